#include "CVCPOption.h"

#include <sstream>

#include "Assert.h"
#include "StringUtilities.h"

namespace {

// A value whose upper 16 bits are all ones is a signed 16-bit value that was widened.
bool IsWidened16(int32_t value_I) {
    return (static_cast<uint32_t>(value_I) >> 16) == 0xFFFF;
}

int32_t SignExtendWidened(int32_t value_I) {
    return IsWidened16(value_I) ? static_cast<int32_t>(static_cast<int16_t>(value_I & 0xFFFF)) : value_I;
}

bool SameEnumeratedValue(int32_t a_I, int32_t b_I) {
    if (IsWidened16(a_I) || IsWidened16(b_I)) {
        return (a_I & 0xFFFF) == (b_I & 0xFFFF);
    }
    return a_I == b_I;
}

const char* AccessText(uint32_t access_I) {
    switch (access_I) {
        case eAccessReadOnly: return " Read Only,";
        case eAccessWriteOnly: return " Write Only,";
        case eAccessReadWrite: return " Readable/Writable,";
        default: return " Placeholder,";
    }
}

const char* TypeText(uint32_t type_I) {
    switch (type_I) {
        case eTypeContinuous: return " Continuous,";
        case eTypeNonContinuous: return " Non-Continuous,";
        default: return " Table,";
    }
}

}  // namespace

std::vector<uint32_t> ParseOptionSet(const std::string& optionSet_I) {
    std::vector<uint32_t> values;
    std::istringstream in(optionSet_I);
    in >> std::hex;
    uint32_t value = 0;
    while (in >> value) {
        values.push_back(value);
    }
    return values;
}

template <>
std::string OptionValueText<uint32_t>(uint32_t value_I) {
    return StringPrintf("0x%X", value_I);
}

// ---- VCPOptionBase ----

VCPOptionBase::VCPOptionBase(uint32_t code_I, const CCodeInfo& info_I) : mCode(code_I), mInfo(info_I) {}

void VCPOptionBase::Print(std::ostream& out_I) const {
    out_I << " Name = " << VCPCodeName(mCode) << " (0x" << std::hex << std::uppercase << mCode << std::dec
          << std::nouppercase << ")\n";
    out_I << " Value = " << GetValue() << " (" << GetOriginal() << ")\n";
    out_I << AccessText(mInfo.Access()) << TypeText(mInfo.Type()) << "\n";
    out_I << " Size: read " << mInfo.ReadSize() << ", write " << mInfo.WriteSize() << "\n";
    if (HasError()) {
        out_I << " Error \"" << mError << "\"\n";
    }
}

bool VCPOptionBase::IsValue(int32_t value_I) const {
    return mValue == value_I;
}
int32_t VCPOptionBase::GetValue() const {
    return mValue;
}
int32_t VCPOptionBase::GetOriginal() const {
    return mOriginal;
}

bool VCPOptionBase::SetValue(int32_t value_I) {
    mValue = value_I;
    mError.clear();
    return true;
}

bool VCPOptionBase::SetOriginal(int32_t value_I) {
    mOriginal = value_I;
    mHasOriginal = true;
    mError.clear();
    return true;
}

bool VCPOptionBase::IsChanged() const {
    return mValue != mOriginal;
}

bool VCPOptionBase::SetCheckedValue(int32_t value_I) {
    if (!mInfo.WriteOnly()) {
        if (!IsValidValue(value_I) || IsValue(value_I)) {
            return false;
        }
    }
    return VCPOptionBase::SetValue(value_I);
}

bool VCPOptionBase::SetCheckedOriginal(int32_t value_I) {
    if (!mInfo.WriteOnly() && !mInfo.Placeholder() && !IsValidValue(value_I)) {
        return false;
    }
    return VCPOptionBase::SetOriginal(value_I);
}

// ---- VCPOptionSingleCode ----

VCPOptionSingleCode::VCPOptionSingleCode(uint32_t code_I, const CCodeInfo& info_I)
    : VCPOptionBase(code_I, info_I) {}

void VCPOptionSingleCode::Print(std::ostream& out_I) const {
    VCPOptionBase::Print(out_I);
    out_I << " Max = " << mMaximum << "\n";
}

void VCPOptionSingleCode::SetMaximum(int32_t maximum_I) {
    VLR_ASSERT(Info().Continuous());
    mMinimum = 0;
    mMaximum = maximum_I;
}

bool VCPOptionSingleCode::IsValidValue(int32_t value_I) const {
    if (mMinimum <= mMaximum) {
        return value_I >= mMinimum && value_I <= mMaximum;
    }
    // A wrapping range such as 10..5 holds 10 and up, and 5 and down.
    return value_I >= mMinimum || value_I <= mMaximum;
}

// ---- VCPOptionCodeWithEnumerationT ----

template <typename E>
VCPOptionCodeWithEnumerationT<E>::VCPOptionCodeWithEnumerationT(uint32_t code_I, const CCodeInfo& info_I,
                                                                const std::string& optionSet_I)
    : VCPOptionBase(code_I, info_I), mOptionSet(ParseOptionSet(optionSet_I)) {
    VLR_ASSERT(!Info().Continuous() && !Info().Table());
}

template <typename E>
void VCPOptionCodeWithEnumerationT<E>::Print(std::ostream& out_I) const {
    VCPOptionBase::Print(out_I);
    if (mOptionSet.empty()) {
        out_I << " No defined value list\n";
        return;
    }
    for (uint32_t element : mOptionSet) {
        if (IsValue(static_cast<int32_t>(element))) {
            out_I << " **Selected";
        }
        out_I << " Enum Code = " << OptionValueText<E>(element) << " (" << element << ")\n";
    }
}

template <typename E>
bool VCPOptionCodeWithEnumerationT<E>::IsValue(int32_t value_I) const {
    return SameEnumeratedValue(mValue, value_I);
}

template <typename E>
int32_t VCPOptionCodeWithEnumerationT<E>::GetValue() const {
    return SignExtendWidened(mValue);
}

template <typename E>
int32_t VCPOptionCodeWithEnumerationT<E>::GetOriginal() const {
    return SignExtendWidened(mOriginal);
}

template <typename E>
bool VCPOptionCodeWithEnumerationT<E>::IsChanged() const {
    return !SameEnumeratedValue(mValue, mOriginal);
}

template <typename E>
void VCPOptionCodeWithEnumerationT<E>::SetMaximum(int32_t) {
    VLR_ASSERT_FAIL("\"Should not be called on a Non-Continuous value\"");
}

template <typename E>
bool VCPOptionCodeWithEnumerationT<E>::IsValidValue(int32_t value_I) const {
    if (mOptionSet.empty()) {
        return true;
    }
    const int32_t asShort = static_cast<int16_t>(value_I & 0xFFFF);
    for (uint32_t element : mOptionSet) {
        if (static_cast<int32_t>(element) == asShort) {
            return true;
        }
    }
    return false;
}

template class VCPOptionCodeWithEnumerationT<uint32_t>;
template class VCPOptionCodeWithEnumerationT<colorPresetCode>;
template class VCPOptionCodeWithEnumerationT<displayScalingCode>;
template class VCPOptionCodeWithEnumerationT<ledBrightnessCode>;
template class VCPOptionCodeWithEnumerationT<displayPresetCode>;
template class VCPOptionCodeWithEnumerationT<colorSpaceCode>;
template class VCPOptionCodeWithEnumerationT<gammaCode>;
template class VCPOptionCodeWithEnumerationT<uniformityCompCode>;
