#include "CI2CConnectorFTDI.h"

#include <chrono>

#include "Clock.h"
#include "DebugLog.h"

namespace {
constexpr ULONG kUsbTransferSize = 65536;
constexpr ULONG kTimeoutMs = 5000;
constexpr UCHAR kLatencyMs = 16;
constexpr std::chrono::milliseconds kAnswerLimit{200};
constexpr std::chrono::milliseconds kPollInterval{1};
// An answer usually comes within a USB frame or two; a 1 ms sleep lasts a whole scheduler
// tick (about 15.6 ms) on Windows, so the first 2 ms are polled without sleeping.
constexpr std::chrono::milliseconds kBusyPoll{2};
}  // namespace

// FT_Write and FT_Read for the MPSSE engine, waiting for answers to arrive.
class CI2CConnectorFTDI::CChannel : public IMpsseChannel {
public:
    CChannel(const SFtd2xxApi& api_I, FT_HANDLE handle_I) : mApi(api_I), mHandle(handle_I) {}

    bool Write(const ByteBuffer& bytes_I) override {
        DWORD written = 0;
        ByteBuffer copy = bytes_I;
        return Check(mApi.FT_Write(mHandle, copy.data(), static_cast<DWORD>(copy.size()), &written)) &&
               written == copy.size();
    }

    bool Read(size_t count_I, ByteBuffer& bytes_O) override {
        // The limit is measured, not counted in sleeps: sleeps last longer than asked.
        const auto deadline = Clock::Get().Now() + kAnswerLimit;
        const auto busyUntil = std::chrono::steady_clock::now() + kBusyPoll;
        for (;;) {
            DWORD queued = 0;
            if (!Check(mApi.FT_GetQueueStatus(mHandle, &queued))) {
                return false;
            }
            if (queued >= count_I) {
                bytes_O.assign(count_I, 0);
                DWORD received = 0;
                return Check(mApi.FT_Read(mHandle, bytes_O.data(), static_cast<DWORD>(count_I), &received)) &&
                       received == count_I;
            }
            if (Clock::Get().Now() >= deadline) {
                break;
            }
            if (std::chrono::steady_clock::now() < busyUntil) {
                continue;
            }
            Clock::Pause(kPollInterval);
        }
        DLog("CI2CConnectorFTDI: the bridge did not answer\n");
        return false;
    }

    // A call failed in a way that says the bridge itself went away (unplugged, or the
    // display it sits in switched off): the handle is dead for good.
    bool Gone() const { return mGone; }

private:
    bool Check(FT_STATUS status_I) {
        if (status_I == FT_INVALID_HANDLE || status_I == FT_DEVICE_NOT_FOUND ||
            status_I == FT_DEVICE_NOT_OPENED || status_I == FT_IO_ERROR) {
            mGone = true;
        }
        return status_I == FT_OK;
    }

    const SFtd2xxApi& mApi;
    FT_HANDLE mHandle;
    bool mGone = false;
};

CI2CConnectorFTDI::CI2CConnectorFTDI() = default;

CI2CConnectorFTDI::~CI2CConnectorFTDI() {
    Close();
}

int CI2CConnectorFTDI::DeviceCount() {
    const SFtd2xxApi* api = Ftd2xxApi();
    DWORD count = 0;
    if (api == nullptr || api->FT_CreateDeviceInfoList == nullptr ||
        api->FT_CreateDeviceInfoList(&count) != FT_OK) {
        return 0;
    }
    return static_cast<int>(count);
}

bool CI2CConnectorFTDI::Open(int32_t deviceIndex_I) {
    Close();
    const SFtd2xxApi* api = Ftd2xxApi();
    if (api == nullptr || api->FT_Open == nullptr) {
        DLog("CI2CConnectorFTDI::Open: no D2XX driver\n");
        return false;
    }
    // Other FTDI cables and JTAG probes may be plugged in: touch only FT232H bridges that
    // no other program holds.
    DWORD flags = 0;
    DWORD type = 0;
    DWORD id = 0;
    DWORD location = 0;
    char serial[16] = {};
    char description[64] = {};
    FT_HANDLE held = nullptr;
    if (api->FT_GetDeviceInfoDetail(static_cast<DWORD>(deviceIndex_I), &flags, &type, &id, &location, serial,
                                    description, &held) != FT_OK) {
        DLog("CI2CConnectorFTDI::Open: device %i has no device information\n", deviceIndex_I);
        return false;
    }
    if (type != FT_DEVICE_232H) {
        DLog("CI2CConnectorFTDI::Open: device %i is not an FT232H (type %lu); left alone\n", deviceIndex_I,
             static_cast<unsigned long>(type));
        return false;
    }
    if ((flags & FT_FLAGS_OPENED) != 0) {
        DLog("CI2CConnectorFTDI::Open: device %i is open in another program; left alone\n", deviceIndex_I);
        return false;
    }
    if (api->FT_Open(deviceIndex_I, &mHandle) != FT_OK) {
        DLog("CI2CConnectorFTDI::Open: device %i does not open\n", deviceIndex_I);
        mHandle = nullptr;
        return false;
    }
    mBitModeChanged = true;
    const bool configured = api->FT_ResetDevice(mHandle) == FT_OK &&
                            api->FT_Purge(mHandle, FT_PURGE_RX | FT_PURGE_TX) == FT_OK &&
                            api->FT_SetUSBParameters(mHandle, kUsbTransferSize, kUsbTransferSize) == FT_OK &&
                            api->FT_SetChars(mHandle, 0, 0, 0, 0) == FT_OK &&
                            api->FT_SetTimeouts(mHandle, kTimeoutMs, kTimeoutMs) == FT_OK &&
                            api->FT_SetLatencyTimer(mHandle, kLatencyMs) == FT_OK &&
                            api->FT_SetBitMode(mHandle, 0x00, FT_BITMODE_RESET) == FT_OK &&
                            api->FT_SetBitMode(mHandle, 0x00, FT_BITMODE_MPSSE) == FT_OK;
    if (!configured) {
        DLog("CI2CConnectorFTDI::Open: device %i refuses the MPSSE set-up\n", deviceIndex_I);
        Close();
        return false;
    }
    Clock::PauseMs(50);  // the engine needs a moment after the mode change
    mChannel = std::make_unique<CChannel>(*api, mHandle);
    auto master = std::make_unique<CMpsseI2CMaster>(*mChannel);
    if (!master->Initialise()) {
        Close();
        return false;
    }
    SetMaster(std::move(master));
    return true;
}

ByteBuffer CI2CConnectorFTDI::SendRequest(const ByteBuffer& toSend_I, double delay_I, unsigned expectedSize_I,
                                          int32_t depth_I) {
    ByteBuffer reply = CDdcI2CConnector::SendRequest(toSend_I, delay_I, expectedSize_I, depth_I);
    if (mChannel && mChannel->Gone()) {
        DLog("CI2CConnectorFTDI: the bridge is gone; closing\n");
        Close();
    }
    return reply;
}

bool CI2CConnectorFTDI::Close() {
    CDdcI2CConnector::Close();
    mChannel.reset();
    if (mHandle != nullptr) {
        if (const SFtd2xxApi* api = Ftd2xxApi(); api != nullptr) {
            // The bridge goes back to its default mode, as other programs expect to find it.
            if (mBitModeChanged) {
                api->FT_SetBitMode(mHandle, 0x00, FT_BITMODE_RESET);
            }
            api->FT_Close(mHandle);
        }
        mHandle = nullptr;
        mBitModeChanged = false;
    }
    return true;
}
