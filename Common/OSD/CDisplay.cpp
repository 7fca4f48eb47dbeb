#include "CDisplay.h"

#include <cstdio>
#include <optional>

#include "Assert.h"
#include "Clock.h"
#include "DdcPackets.h"
#include "DebugLog.h"
#include "ScopedTimer.h"

SMCCSVersion SMCCSVersion::Parse(const std::string& text_I) {
    SMCCSVersion version;
    unsigned major = 0;
    unsigned minor = 0;
    if (std::sscanf(text_I.c_str(), "%u.%u", &major, &minor) == 2 && minor <= 0xFF) {
        version.major = major;
        version.minor = static_cast<uint8_t>(minor);
    }
    return version;
}

CDisplay::CDisplay(std::shared_ptr<Connector> connector_I, uint16_t edidNumber_I)
    : mConnector(std::move(connector_I)), mEDIDNumber(edidNumber_I), mTraits(DisplayTraitsFor(edidNumber_I)) {
    if (mConnector) {
        // The shared connector commands (save, reset, firmware) wait as this display's family needs.
        mConnector->UseWaits(mTraits.waits);
    }
}

CDisplay::~CDisplay() {
    ClearData();
}

VCPOptionPtr CDisplay::Option(uint32_t vcpCode_I) const {
    if (vcpCode_I > 0xFF) {
        return nullptr;
    }
    auto it = mVCPOptionsMap.find(static_cast<uint8_t>(vcpCode_I));
    return it == mVCPOptionsMap.end() ? nullptr : it->second;
}

bool CDisplay::Initialize(const std::string& capsStr_I) {
    CScopedTimer timer("CDisplay::Initialize");
    auto fail = [](const char* what_I) {
        DLog("%s : %s\n", __PRETTY_FUNCTION__, what_I);
        return false;
    };
    VLR_ASSERT(mEDIDNumber != 0);

    if (mCodeInfo.empty()) {
        mCodeInfo = BuildCodeInfoTable(mTraits.codeVariants);
    }
    if (!capsStr_I.empty()) {
        return InitializeFrom(capsStr_I, fail);
    }
    VLR_ASSERT(mConnector);
    if (!mConnector) {
        return false;
    }
    const auto exclusive = mConnector->Exclusive();
    const bool caching = mCapabilitiesCache && mIdentity.IsComplete();
    if (caching) {
        // The firmware first: a cached string is only as good as the firmware it came from.
        mFirmwareVersion = mConnector->FWVersion();
        if (std::optional<CCapabilitiesCache::SEntry> cached =
                mCapabilitiesCache->Find(mIdentity, mFirmwareVersion)) {
            DLog("CDisplay::Initialize: capabilities of %s from the cache\n", mIdentity.serial.c_str());
            const std::string nameBefore = mMonitorName;
            if (mMonitorName.empty()) {
                mMonitorName = cached->monitorName;
            }
            if (InitializeFrom(cached->capabilities, fail)) {
                mCapabilitiesFromCache = true;
                return true;
            }
            DLog("CDisplay::Initialize: the cached capabilities do not make a display; reading them\n");
            mCapabilitiesCache->Forget(mIdentity);
            mMonitorName = nameBefore;
            ClearData();
        }
    }
    mCapabilitiesFromCache = false;
    if (mMonitorName.empty()) {
        CScopedTimer nameTimer("CDisplay::Initialize", " MonitorName");
        mMonitorName = mConnector->MonitorName();
    }
    const std::string connectorsName = mMonitorName;
    std::string capsStr;
    {
        CScopedTimer capsTimer("CDisplay::Initialize", " CapabilitiesString");
        capsStr = mConnector->CapabilitiesString();
    }
    if (capsStr.empty()) {
        return false;
    }
    if (!caching) {
        mFirmwareVersion = mConnector->FWVersion();
    }
    if (!InitializeFrom(capsStr, fail)) {
        return false;
    }
    if (caching) {
        mCapabilitiesCache->Store(mIdentity, mFirmwareVersion, {capsStr, connectorsName});
    }
    return true;
}

bool CDisplay::InitializeFrom(const std::string& capsStr, bool (*fail)(const char*)) {
    DLog("caps: %s\n", capsStr.c_str());
    mCapabilities = ParseCapabilitiesString(capsStr);

    auto valueOf = [this](const char* key_I) -> std::string {
        auto it = mCapabilities.find(key_I);
        return it == mCapabilities.end() ? std::string() : it->second;
    };

    mProtocol = valueOf("prot");
    if (mProtocol.empty()) {
        return fail("prot missing");
    }
    mType = valueOf("type");
    if (mType.empty()) {
        return fail("type missing");
    }
    const std::string model = valueOf("model");
    if (model.empty()) {
        return fail("model missing");
    }
    if (mMonitorName.empty()) {
        mMonitorName = model;
    }

    if (valueOf("mccs_ver").empty()) {
        if (!mTraits.AcceptsMissingMccsVersion()) {
            return fail("mccs_ver missing");
        }
        mCapabilities["mccs_ver"] = "2.2";
    }
    mMCCSVersion = SMCCSVersion::Parse(mCapabilities["mccs_ver"]);
    VLR_ASSERT(mMCCSVersion.IsValid());

    std::string vcp = valueOf("vcp");
    if (vcp.empty()) {
        return fail("vcp missing");
    }
    if (mTraits.batteryModeMissingZero && vcp.find("F4(02 03)") != std::string::npos) {
        // The firmware reports Battery Mode 0 but leaves it out of its list.
        DLog("CDisplay::Initialize: WARNING - HACKING 0xF4 options to include illegal zero value\n");
        vcp.insert(vcp.find("F4(") + 3, "00 ");
        mCapabilities["vcp"] = vcp;
        DLog("Updated caps for 0xF4: %s\n", vcp.c_str());
    }

    mVCPOptionsMap = CreateVCPCodeMap(mTraits.codeVariants, vcp, mCodeInfo);
    if (mVCPOptionsMap.empty()) {
        return fail("CreateVCPCodeMap failed");
    }
    if (mConnector) {
        ApplyModelCorrections();
    }
    // Write-only codes have nothing to read: 0 stands as their original, so that a set of
    // them is always a change from what the display has.
    for (auto& entry : mVCPOptionsMap) {
        if (entry.second->Info().WriteOnly() && !entry.second->HasOriginal()) {
            entry.second->SetOriginal(0);
            entry.second->ResetValueToOriginal();
        }
    }

    const std::string cmds = valueOf("cmds");
    if (cmds.empty()) {
        return fail("cmds missing");
    }
    mCommands = CreateCommandsVector(cmds);
    if (mCommands.empty()) {
        return fail("CreateCommandsVector failed");
    }
    return true;
}

const SFirmwareVersion& CDisplay::ReadFirmwareVersion() {
    if (mFirmwareVersion.IsZero() && mConnector) {
        const auto exclusive = mConnector->Exclusive();
        mFirmwareVersion = mConnector->FWVersion();
    }
    return mFirmwareVersion;
}

void CDisplay::ApplyModelCorrections() {
    auto replaceWithPresets = [this](uint8_t code_I, const char* optionSet_I) {
        if (mVCPOptionsMap.count(code_I) != 0) {
            mVCPOptionsMap[code_I] = std::make_shared<VCPOptionCodeWithEnumerationT<colorPresetCode>>(
                code_I, mCodeInfo.at(code_I), optionSet_I);
        }
    };
    if (mTraits.fixedColorPresets) {
        replaceWithPresets(vcpC_SelectColorPreset, "04 05 08 0B");
    }
    if (mTraits.extendedDisplayPresets) {
        // Printed with colour-preset texts: the extended set mixes preset kinds.
        replaceWithPresets(vcpC_DisplayPresets, "00 05 06 07 08 09 0A 0B 0C 0D");
    }
    if (mTraits.noFan) {
        mVCPOptionsMap.erase(vcpC_FanSpeed);
    }
}

bool CDisplay::ReadVCPValue_(const VCPOptionPtr& option_I) {
    VLR_ASSERT(option_I.get());
    if (!option_I) {
        return false;
    }
    CScopedTimer timer("CDisplay::ReadVCPValue_");
    const uint8_t code = static_cast<uint8_t>(option_I->GetCode());
    DLog("ReadVCPValue [0x%X] %s\n", code, VCPCodeName(code).c_str());
    option_I->ClearError();

    if (option_I->Info().Table()) {
        option_I->SetError(EReplyError::TableCodesNotSupported);
    } else if (option_I->Info().Readable()) {
        ByteBuffer inBuffer;
        if (mConnector) {
            const auto exclusive = mConnector->Exclusive();
            inBuffer = mConnector->SendRequest(BuildGetVCPRequest(code), Seconds(mTraits.waits.writeToRead),
                                               Ddc::kReplySize, 0);
        }
        StripReplyChecksum(inBuffer);
        SGetReplyValue reply;
        const bool continuous = option_I->Info().Continuous();
        const EReplyError error = CheckGetReply(inBuffer, code, continuous, reply);
        if (error != EReplyError::None) {
            option_I->SetError(error);
        } else if (!continuous) {
            const int32_t value = reply.nonContinuous;
            if (option_I->HasOriginal()) {
                if (!option_I->IsValue(value) && !option_I->SetValue(value)) {
                    DLog("WARNING: Non-Continuous SetValue failed\n");
                    VLR_ASSERT_FAIL("\"Non-Continuous SetValue failed\"");
                }
            } else {
                if (!option_I->SetOriginal(value)) {
                    DLog("WARNING: Non-Continuous SetOriginal failed\n");
                    VLR_ASSERT_FAIL("\"Non-Continuous SetOriginal failed\"");
                }
                option_I->ResetValueToOriginal();
                option_I->ClearError();
            }
        } else {
            const int32_t max = reply.maximum;
            const int32_t value = reply.current;
            if (option_I->HasOriginal()) {
                VLR_ASSERT(option_I->GetRange().maximum == max);
                if (!option_I->IsValue(value) && !option_I->SetValue(value)) {
                    DLog("WARNING - Continuous SetValue failed\n");
                    VLR_ASSERT_FAIL("\"Continuous SetValue failed\"");
                }
            } else {
                option_I->SetMaximum(max);
                if (!option_I->SetOriginal(value)) {
                    DLog("WARNING - Continuous SetOriginal failed\n");
                    VLR_ASSERT_FAIL("\"Continuous SetOriginal failed\"");
                }
                option_I->ResetValueToOriginal();
            }
        }
    }

    if (option_I->HasError()) {
        DLog("ReadVCPValue %s failed %s\n", VCPCodeName(code).c_str(), option_I->Error().c_str());
        return false;
    }
    return true;
}

bool CDisplay::WriteVCPValue_(const VCPOptionPtr& option_I) {
    VLR_ASSERT(option_I.get());
    if (!option_I) {
        return false;
    }
    CScopedTimer timer("CDisplay::WriteVCPValue_");
    const uint8_t code = static_cast<uint8_t>(option_I->GetCode());
    DLog("WriteVCPValue %s\n", VCPCodeName(code).c_str());

    if (option_I->Info().Table()) {
        option_I->SetError(EReplyError::TableCodesNotSupported);
    } else if (option_I->Info().Writable() && !option_I->HasError()) {
        if (!mConnector) {
            option_I->SetError(EReplyError::DeviceNotOpen);
        } else {
            const uint16_t value = static_cast<uint16_t>(option_I->GetValue() & 0xFFFF);
            const auto exclusive = mConnector->Exclusive();
            ByteBuffer inBuffer = mConnector->SendRequest(
                BuildSetVCPRequest(code, value), Seconds(mTraits.waits.SetToReply(code)), Ddc::kReplySize, 0);
            StripReplyChecksum(inBuffer);
            if (CheckSetReply(inBuffer) != EReplyError::None) {
                // A transport answers nothing both when the display is silent and when the
                // device has gone; only the connector can tell which.
                option_I->SetError(mConnector->IsOpen() ? EReplyError::SendRequestFailed
                                                        : EReplyError::DeviceNotOpen);
            } else if (!mConnector->IsOpen()) {
                // The HID route reads a set whose report never went out as answered (kept on
                // purpose); a connector that closed under the request says the display is gone:
                // the value did not arrive.
                option_I->SetError(EReplyError::DeviceNotOpen);
            }
            // The firmware needs time to act on every set, answered or not.
            Clock::Pause(mTraits.waits.afterWrite);
            switch (code) {
                case vcpC_DisplayPresets:
                    // Two pauses, not one of 2 s: the firmware's timing was measured as these
                    // two steps, and the clock's log shows them so.
                    Clock::Pause(mTraits.waits.afterPresetChangeFirst);
                    Clock::Pause(mTraits.waits.afterPresetChangeSecond);
                    break;
                case vcpC_UniformityCompensation: Clock::Pause(mTraits.waits.afterUniformityChange); break;
                case vcpC_RestoreFactoryDefaults:
                case vcpC_RestoreFactoryColorDefaults: Clock::Pause(mTraits.waits.afterFactoryReset); break;
                case vcpC_DisplayScaling:
                    // A scaling change often goes unanswered while the picture is rebuilt; but
                    // on a connector that closed the display is gone and never got it.
                    if (mConnector->IsOpen()) {
                        option_I->ClearError();
                    }
                    break;
                default: break;
            }
        }
    }

    if (option_I->HasError()) {
        DLog("WriteVCPValue %s failed %s\n", VCPCodeName(code).c_str(), option_I->Error().c_str());
        return false;
    }
    return true;
}

bool CDisplay::WriteWithRetry(const VCPOptionPtr& option_I, const char* firstFailureAssert_I) {
    WriteVCPValue_(option_I);
    if (option_I->HasError()) {
        if (firstFailureAssert_I != nullptr) {
            VLR_ASSERT_FAIL(firstFailureAssert_I);
        }
        Clock::Pause(mTraits.waits.beforeRetry);
        option_I->ClearError();
        WriteVCPValue_(option_I);
    }
    return !option_I->HasError();
}

bool CDisplay::SetVCPValue(uint32_t vcpCode_I, int32_t value_I) {
    DLogVerbose("SetVCPValue: vcp: 0x%X, val: 0x%X\n", vcpCode_I, static_cast<unsigned>(value_I));
    VCPOptionPtr option = Option(vcpCode_I);
    VLR_ASSERT_AS(option != nullptr, "mVCPOptionsMap.count(vcpCode_I)");
    if (!option) {
        return false;
    }
    VLR_ASSERT(option->GetCode() != vcpC_Undefined);
    VLR_ASSERT(!option->HasError());

    const int32_t previous = option->GetValue();
    if (option->HasOriginal() && !option->IsValue(value_I) && option->SetValue(value_I)) {
        if (!WriteWithRetry(option)) {
            DLogVerbose("SetVCPValue write failed %s\n", option->Error().c_str());
            NoteFailure(option);
            option->ClearError();
            // Deliberately goes beyond a plain failed write: the display did not take the value,
            // so keep believing what it has, and a retry writes again instead of finding the
            // value already current.
            option->RestoreValue(previous);
            return false;
        }
        if (!ReadVCPValue_(option)) {
            DLogVerbose("SetVCPValue read failed %s\n", option->Error().c_str());
            option->ClearError();
        }
    }
    return true;
}

bool CDisplay::SetVCPValueVerify(uint32_t vcpCode_I, int32_t value_I, int retryCount_I) {
    DLogVerbose("SetVCPValueVerify writing value: 0x%X\n", static_cast<unsigned>(value_I));
    bool matched = false;
    do {
        if (SetVCPValue(vcpCode_I, value_I)) {
            SVCPValue readBack = GetVCPValue(vcpCode_I, false);
            DLogVerbose("SetVCPValueVerify read value: 0x%X\n", static_cast<unsigned>(readBack.value));
            matched = (readBack.value & 0xFFFF) == (value_I & 0xFFFF);
        } else {
            matched = false;
        }
    } while (!matched && --retryCount_I >= 0);
    return matched;
}

SVCPValue CDisplay::GetVCPValue(uint32_t vcpCode_I, bool forceRead_I) {
    SVCPValue result;
    VCPOptionPtr option = Option(vcpCode_I);
    if (!option) {
        return result;
    }
    if (!option->HasOriginal() || forceRead_I) {
        ReadVCPValue_(option);
    }
    result.valid = !option->HasError() && option->HasOriginal();
    result.value = option->GetValue();
    result.range = option->GetRange();
    result.error = option->Error();
    result.errorKind = option->ErrorKind();
    return result;
}

bool CDisplay::RestoreOriginal(uint32_t vcpCode_I) {
    VCPOptionPtr option = Option(vcpCode_I);
    VLR_ASSERT_AS(option != nullptr, "mVCPOptionsMap.count(vcpCode_I)");
    if (!option) {
        return true;
    }
    VLR_ASSERT(option->GetCode() != vcpC_Undefined);
    VLR_ASSERT(!option->HasError());
    if (!option->HasOriginal() || !option->IsChanged()) {
        return true;
    }
    option->ResetValueToOriginal();
    option->ClearError();
    if (!WriteWithRetry(option)) {
        // Not given up on: the read-back below makes the option hold what the display has,
        // so the change stays unsaved and visible.
        VLR_ASSERT_FAIL("!option->HasError()");
    }
    if (!ReadVCPValue_(option)) {
        // Some panels need a second to settle before they read back a restored preset.
        Clock::Pause(mTraits.waits.restoredPresetSettles);
        option->ClearError();
        if (!ReadVCPValue_(option)) {
            return false;
        }
    }
    return true;
}

void CDisplay::NoteFailure(const VCPOptionPtr& option_I) {
    NoteFailure(VCPCodeName(option_I->GetCode()), option_I->Error());
}

void CDisplay::NoteFailure(const std::string& what_I, const std::string& why_I) {
    mLastFailure = what_I + ": " + why_I;
}

bool CDisplay::Save() {
    for (auto& opt : mVCPOptionsMap) {
        VLR_ASSERT(opt.second);
        if (!opt.second || !opt.second->IsChanged()) {
            continue;
        }
        opt.second->ClearError();
        opt.second->CommitValueAsOriginal();
        opt.second->ClearError();
    }
    if (!mConnector) {
        return true;
    }
    const auto exclusive = mConnector->Exclusive();
    if (!mConnector->SaveSettingsToScalar()) {
        NoteFailure("Save", "the display did not confirm storing the settings");
        return false;
    }
    return true;
}

bool CDisplay::Revert() {
    bool allWritten = true;
    for (auto& opt : mVCPOptionsMap) {
        // Write-only options too: a started action (LCD conditioning) is written back to its
        // original.
        if (!opt.second || !opt.second->IsChanged()) {
            continue;
        }
        opt.second->ClearError();
        opt.second->ResetValueToOriginal();
        const bool written = WriteWithRetry(opt.second, "!opt.second->HasError()");
        if (!written) {
            NoteFailure(opt.second);
            allWritten = false;
        }
        // The read-back settles what the option holds. A display that ignored the write, or
        // that cannot say what it has now, has not been put back.
        const bool readBack = ReadVCPValue_(opt.second);
        if (written && !opt.second->Info().WriteOnly()) {
            if (!readBack) {
                NoteFailure(opt.second);
                allWritten = false;
            } else if (opt.second->IsChanged()) {
                NoteFailure(VCPCodeName(opt.second->GetCode()), "the display kept another value");
                allWritten = false;
            }
        }
        opt.second->ClearError();
    }
    return allWritten;
}

void CDisplay::ResetOneOption(VCPOptionBase& option_I) {
    option_I.ClearError();
    if (!option_I.Info().WriteOnly()) {
        option_I.ClearHasOriginal();
    } else {
        // A write-only option has nothing to read back: 0 stands for "nothing done" again, so
        // that the next start of the action is a change even after a Save kept it.
        option_I.SetOriginal(0);
    }
    option_I.ResetValueToOriginal();
}

void CDisplay::ResetData(bool allOptions_I) {
    for (auto& opt : mVCPOptionsMap) {
        if (!opt.second || (opt.first == vcpC_DisplayPresets && !allOptions_I)) {
            continue;
        }
        ResetOneOption(*opt.second);
    }
}

void CDisplay::ResetOptionData(uint32_t vcpCode_I) {
    if (VCPOptionPtr option = Option(vcpCode_I)) {
        ResetOneOption(*option);
    }
}

void CDisplay::ClearData() {
    DLogVerbose("Resetting Display data\n");
    mVCPOptionsMap.clear();
    mCommands.clear();
    mCapabilities.clear();
}
