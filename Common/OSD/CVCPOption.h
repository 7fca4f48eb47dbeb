#pragma once
// One object per VCP code a display supports: its code and access, the value last read, the
// value the display had when first read (the original), the valid range or option set, and
// the text of the last error.

#include <cstdint>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "CodeInfo.h"
#include "ReplyError.h"
#include "codes.h"

struct SRange {
    int32_t minimum = 0;
    int32_t maximum = 0;
    friend bool operator==(const SRange&, const SRange&) = default;
};

class VCPOptionBase {
public:
    VCPOptionBase(uint32_t code_I, const CCodeInfo& info_I);
    virtual ~VCPOptionBase() = default;

    virtual void Print(std::ostream& out_I) const;
    virtual bool IsValue(int32_t value_I) const;
    virtual int32_t GetValue() const;
    virtual int32_t GetOriginal() const;
    virtual bool SetValue(int32_t value_I);
    virtual bool SetOriginal(int32_t value_I);
    virtual bool IsChanged() const;
    virtual SRange GetRange() const = 0;
    virtual void SetMaximum(int32_t maximum_I) = 0;
    virtual bool IsValidValue(int32_t value_I) const = 0;

    uint32_t GetCode() const { return mCode; }
    const CCodeInfo& Info() const { return mInfo; }

    bool HasOriginal() const { return mHasOriginal; }
    // Forgets the original so the next get reads the display again.
    void ClearHasOriginal() { mHasOriginal = false; }
    // Current value back to the original, without any check (revert, restore, reset).
    void ResetValueToOriginal() { mValue = mOriginal; }
    // Puts back a current value the display still has (after a write it did not take).
    void RestoreValue(int32_t value_I) { mValue = value_I; }
    // The original becomes the current value (the display has stored it).
    void CommitValueAsOriginal() { mOriginal = mValue; }

    bool HasError() const { return !mError.empty(); }
    const std::string& Error() const { return mError; }
    EReplyError ErrorKind() const { return mErrorKind; }
    void SetError(EReplyError error_I) {
        mErrorKind = error_I;
        mError = ReplyErrorText(error_I);
    }
    // An error with a text of its own.
    void SetError(std::string error_I) {
        mErrorKind = EReplyError::Other;
        mError = std::move(error_I);
    }
    void ClearError() {
        mErrorKind = EReplyError::None;
        mError.clear();
    }

protected:
    // The shared setter rules of the derived classes: write-only options take any value;
    // others only a valid value that differs from the current one.
    bool SetCheckedValue(int32_t value_I);
    bool SetCheckedOriginal(int32_t value_I);

    uint32_t mCode;
    CCodeInfo mInfo;
    int32_t mValue = 0;
    int32_t mOriginal = 0;
    bool mHasOriginal = false;
    std::string mError;
    EReplyError mErrorKind = EReplyError::None;
};

// A continuous code: any value in the range minimum..maximum (which may wrap).
class VCPOptionSingleCode : public VCPOptionBase {
public:
    VCPOptionSingleCode(uint32_t code_I, const CCodeInfo& info_I);

    void Print(std::ostream& out_I) const override;
    bool SetValue(int32_t value_I) override { return SetCheckedValue(value_I); }
    bool SetOriginal(int32_t value_I) override { return SetCheckedOriginal(value_I); }
    SRange GetRange() const override { return {mMinimum, mMaximum}; }
    void SetMaximum(int32_t maximum_I) override;
    bool IsValidValue(int32_t value_I) const override;

    // For ranges that do not start at 0 (tests and the virtual display).
    void SetRange(int32_t minimum_I, int32_t maximum_I) {
        mMinimum = minimum_I;
        mMaximum = maximum_I;
    }

private:
    int32_t mMinimum = 0;
    int32_t mMaximum = 0;
};

// The printed text of one element of an option set.
template <typename E>
std::string OptionValueText(uint32_t value_I) {
    if (value_I > 0xFF) {
        return "Unsupported VPC Code";
    }
    return VCPCodeToString(static_cast<E>(value_I));
}
template <>
std::string OptionValueText<uint32_t>(uint32_t value_I);

// A non-continuous code: one of the values the capabilities list (any value when the list
// is empty). E only changes how values are printed.
template <typename E>
class VCPOptionCodeWithEnumerationT : public VCPOptionBase {
public:
    // optionSet_I: the option-set text of the capabilities, blank-separated hex values.
    VCPOptionCodeWithEnumerationT(uint32_t code_I, const CCodeInfo& info_I, const std::string& optionSet_I);

    void Print(std::ostream& out_I) const override;
    bool IsValue(int32_t value_I) const override;
    int32_t GetValue() const override;
    int32_t GetOriginal() const override;
    bool SetValue(int32_t value_I) override { return SetCheckedValue(value_I); }
    bool SetOriginal(int32_t value_I) override { return SetCheckedOriginal(value_I); }
    bool IsChanged() const override;
    SRange GetRange() const override { return {0, 0}; }
    void SetMaximum(int32_t maximum_I) override;
    bool IsValidValue(int32_t value_I) const override;

    const std::vector<uint32_t>& OptionSet() const { return mOptionSet; }

private:
    std::vector<uint32_t> mOptionSet;
};

using VCPOptionEnumerated = VCPOptionCodeWithEnumerationT<uint32_t>;

extern template class VCPOptionCodeWithEnumerationT<uint32_t>;
extern template class VCPOptionCodeWithEnumerationT<colorPresetCode>;
extern template class VCPOptionCodeWithEnumerationT<displayScalingCode>;
extern template class VCPOptionCodeWithEnumerationT<ledBrightnessCode>;
extern template class VCPOptionCodeWithEnumerationT<displayPresetCode>;
extern template class VCPOptionCodeWithEnumerationT<colorSpaceCode>;
extern template class VCPOptionCodeWithEnumerationT<gammaCode>;
extern template class VCPOptionCodeWithEnumerationT<uniformityCompCode>;

using VCPOptionPtr = std::shared_ptr<VCPOptionBase>;
using VCPOptionsMap = std::map<uint8_t, VCPOptionPtr>;

// The values of an option-set text ("05 08 0B"), read as blank-separated hexadecimal numbers
// until the first token that is not one.
std::vector<uint32_t> ParseOptionSet(const std::string& optionSet_I);
