#include "CVirtualMonitorConfiguration.h"

#include <algorithm>
#include <cstring>

#include "DdcPackets.h"

CVirtualMonitorConfiguration::Handle CVirtualMonitorConfiguration::AddMonitor(
    const std::vector<std::shared_ptr<CVirtualDisplay>>& displays_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    const Handle monitor = mNextHandle;
    mNextHandle += 0x10;
    std::vector<Handle>& physical = mMonitors[monitor];
    for (const auto& display : displays_I) {
        const Handle handle = mNextHandle++;
        physical.push_back(handle);
        mPhysical[handle] = display;
    }
    mNextHandle += 0x10;
    return monitor;
}

void CVirtualMonitorConfiguration::SetUnreachable(const std::shared_ptr<CVirtualDisplay>& display_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    mUnreachable.push_back(display_I);
}

void CVirtualMonitorConfiguration::SetReachable(const std::shared_ptr<CVirtualDisplay>& display_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    mUnreachable.erase(std::remove(mUnreachable.begin(), mUnreachable.end(), display_I), mUnreachable.end());
}

void CVirtualMonitorConfiguration::Replug(const std::shared_ptr<CVirtualDisplay>& display_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    for (auto& [monitor, physical] : mMonitors) {
        for (Handle& handle : physical) {
            if (mPhysical[handle] == display_I) {
                mDeadHandles.push_back(handle);
                handle = mNextHandle++;
                mPhysical[handle] = display_I;
            }
        }
    }
}

void CVirtualMonitorConfiguration::FailNext(EMcaCall call_I, uint32_t errorCode_I, unsigned times_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    mPlannedFailures[call_I].insert(mPlannedFailures[call_I].end(), times_I, errorCode_I);
}

size_t CVirtualMonitorConfiguration::CallCount(EMcaCall call_I) const {
    std::lock_guard<std::mutex> lock(mMutex);
    auto it = mCalls.find(call_I);
    return it == mCalls.end() ? 0 : it->second;
}

bool CVirtualMonitorConfiguration::Enter(EMcaCall call_I, uint32_t& error_O) {
    std::lock_guard<std::mutex> lock(mMutex);
    ++mCalls[call_I];
    std::vector<uint32_t>& planned = mPlannedFailures[call_I];
    if (planned.empty()) {
        return true;
    }
    error_O = planned.front();
    planned.erase(planned.begin());
    return false;
}

std::shared_ptr<CVirtualDisplay> CVirtualMonitorConfiguration::Find(Handle physical_I,
                                                                    uint32_t& error_O) const {
    std::lock_guard<std::mutex> lock(mMutex);
    auto it = mPhysical.find(physical_I);
    if (it == mPhysical.end()) {
        error_O = McaError::kInvalidPhysicalMonitorHandle;
        return nullptr;
    }
    if (std::find(mDeadHandles.begin(), mDeadHandles.end(), physical_I) != mDeadHandles.end()) {
        error_O = McaError::kMonitorNoLongerExists;
        return nullptr;
    }
    if (std::find(mUnreachable.begin(), mUnreachable.end(), it->second) != mUnreachable.end()) {
        error_O = McaError::kI2CErrorReceivingData;
        return nullptr;
    }
    return it->second;
}

const std::vector<CVirtualMonitorConfiguration::Handle>* CVirtualMonitorConfiguration::PhysicalOf(
    Handle monitor_I, uint32_t& error_O) const {
    auto it = mMonitors.find(monitor_I);
    if (it == mMonitors.end()) {
        error_O = McaError::kInvalidMonitorHandle;
        return nullptr;
    }
    return &it->second;
}

std::shared_ptr<CVirtualDisplay> CVirtualMonitorConfiguration::DisplayOf(Handle physical_I) const {
    uint32_t ignored = 0;
    return Find(physical_I, ignored);
}

bool CVirtualMonitorConfiguration::GetNumberOfPhysicalMonitors(Handle monitor_I, uint32_t& count_O,
                                                               uint32_t& error_O) {
    if (!Enter(EMcaCall::GetNumberOfPhysicalMonitors, error_O)) {
        return false;
    }
    std::lock_guard<std::mutex> lock(mMutex);
    const std::vector<Handle>* physical = PhysicalOf(monitor_I, error_O);
    if (physical == nullptr) {
        return false;
    }
    count_O = static_cast<uint32_t>(physical->size());
    return true;
}

bool CVirtualMonitorConfiguration::GetPhysicalMonitors(Handle monitor_I, uint32_t size_I,
                                                       std::vector<SPhysicalMonitor>& monitors_O,
                                                       uint32_t& error_O) {
    if (!Enter(EMcaCall::GetPhysicalMonitors, error_O)) {
        return false;
    }
    std::lock_guard<std::mutex> lock(mMutex);
    const std::vector<Handle>* physical = PhysicalOf(monitor_I, error_O);
    if (physical == nullptr) {
        return false;
    }
    if (size_I < physical->size()) {
        error_O = McaError::kInsufficientBuffer;
        return false;
    }
    monitors_O.clear();
    for (Handle handle : *physical) {
        monitors_O.push_back({handle, L"Generic PnP Monitor"});
    }
    return true;
}

bool CVirtualMonitorConfiguration::Exchange(CVirtualDisplay& display_I, const ByteBuffer& request_I,
                                            ByteBuffer& reply_O, uint32_t& error_O) const {
    reply_O = display_I.Handle(request_I);
    if (reply_O.empty()) {
        error_O = McaError::kI2CErrorReceivingData;
        return false;
    }
    if (Checksum(reply_O, Ddc::kReplyChecksumSeed) != 0) {
        error_O = McaError::kInvalidMessageChecksum;
        return false;
    }
    return true;
}

bool CVirtualMonitorConfiguration::GetVCPFeature(Handle physical_I, uint8_t code_I, uint32_t& type_O,
                                                 uint32_t& current_O, uint32_t& maximum_O,
                                                 uint32_t& error_O) {
    if (!Enter(EMcaCall::GetVCPFeature, error_O)) {
        return false;
    }
    std::shared_ptr<CVirtualDisplay> display = Find(physical_I, error_O);
    ByteBuffer reply;
    if (!display || !Exchange(*display, BuildGetVCPRequest(code_I), reply, error_O)) {
        return false;
    }
    StripReplyChecksum(reply);
    SGetReplyValue value;
    const EReplyError problem = CheckGetReply(reply, code_I, true, value);
    if (problem == EReplyError::VcpCodeError) {
        error_O = McaError::kVcpNotSupported;
        return false;
    }
    if (problem != EReplyError::None) {
        error_O = McaError::kInvalidData;
        return false;
    }
    type_O = value.type;
    current_O = value.current;
    maximum_O = value.maximum;
    return true;
}

bool CVirtualMonitorConfiguration::SetVCPFeature(Handle physical_I, uint8_t code_I, uint32_t value_I,
                                                 uint32_t& error_O) {
    if (!Enter(EMcaCall::SetVCPFeature, error_O)) {
        return false;
    }
    std::shared_ptr<CVirtualDisplay> display = Find(physical_I, error_O);
    ByteBuffer reply;
    return display &&
           Exchange(*display, BuildSetVCPRequest(code_I, static_cast<uint16_t>(value_I)), reply, error_O);
}

bool CVirtualMonitorConfiguration::GetCapabilitiesStringLength(Handle physical_I, uint32_t& length_O,
                                                               uint32_t& error_O) {
    if (!Enter(EMcaCall::GetCapabilitiesStringLength, error_O)) {
        return false;
    }
    std::shared_ptr<CVirtualDisplay> display = Find(physical_I, error_O);
    // The driver reads the string over DDC/CI: a display that answers nothing (still starting,
    // busy) has no capabilities to give.
    ByteBuffer reply;
    if (!display || !Exchange(*display, BuildCapabilitiesRequest(0), reply, error_O)) {
        return false;
    }
    length_O = static_cast<uint32_t>(display->CapabilitiesString().size() + 1);
    return true;
}

bool CVirtualMonitorConfiguration::CapabilitiesRequest(Handle physical_I, char* buffer_O, uint32_t length_I,
                                                       uint32_t& error_O) {
    if (!Enter(EMcaCall::CapabilitiesRequest, error_O)) {
        return false;
    }
    std::shared_ptr<CVirtualDisplay> display = Find(physical_I, error_O);
    if (!display) {
        return false;
    }
    const std::string& caps = display->CapabilitiesString();
    if (buffer_O == nullptr || length_I < caps.size() + 1) {
        error_O = McaError::kInsufficientBuffer;
        return false;
    }
    std::memcpy(buffer_O, caps.c_str(), caps.size() + 1);
    return true;
}

bool CVirtualMonitorConfiguration::SaveCurrentSettings(Handle physical_I, uint32_t& error_O) {
    if (!Enter(EMcaCall::SaveCurrentSettings, error_O)) {
        return false;
    }
    std::shared_ptr<CVirtualDisplay> display = Find(physical_I, error_O);
    ByteBuffer reply;
    return display && Exchange(*display, BuildSaveCurrentSettingsRequest(), reply, error_O);
}
