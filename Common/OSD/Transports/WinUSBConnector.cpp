#include "WinUSBConnector.h"

#include <algorithm>
#include <cmath>

#include "Assert.h"
#include "Clock.h"
#include "DdcPackets.h"
#include "DebugLog.h"
#include "ReadInParts.h"
#include "ScopedTimer.h"
#include "VendorCommands.h"
#include "codes.h"

namespace {

constexpr double kCapabilitiesWaitSeconds = 0.2;
constexpr double kEdidWaitSeconds = 0.7;
constexpr unsigned kEdidSize = 256;
// The longest answer a display gives is its EDID (256 bytes here, 512 with extensions, and a
// header); a line that sends more than this without a pause is not a display answering one request (a wrong
// baud rate, a crossed line), and reading on would keep every request waiting as long as it sends.
constexpr size_t kMaxReplySize = 1024;

}  // namespace

CWinUSBConnector::CWinUSBConnector(std::unique_ptr<ISerialPort> port_I) : mPort(std::move(port_I)) {}

CWinUSBConnector::~CWinUSBConnector() {
    Close();
}

bool CWinUSBConnector::Open(const std::string& name_I) {
    DLog("%s Serial port = %s\n", "CWinUSBConnector::Open", name_I.c_str());
    return mPort && mPort->Open(name_I);
}

bool CWinUSBConnector::Open(int32_t) {
    VLR_ASSERT_FAIL("This is not used by serial connections");
    return false;
}

bool CWinUSBConnector::Close() {
    if (mPort && mPort->IsOpen()) {
        mPort->Close();
    }
    return Connector::Close();
}

bool CWinUSBConnector::CloseIfGone() {
    if (!mPort->DeviceGone()) {
        return false;
    }
    // The bridge was unplugged or the display switched off: this port is dead for good, and
    // the display has to be found again.
    DLog("CWinUSBConnector: the port's device is gone; closing\n");
    mPort->Close();
    return true;
}

bool CWinUSBConnector::IsOpen() const {
    return mPort && mPort->IsOpen();
}

ByteBuffer CWinUSBConnector::SendRequest(const ByteBuffer& toSend_I, double delay_I, unsigned expectedSize_I,
                                         int32_t) {
    CScopedTimer timer("CWinUSBConnector::SendRequest", " Full SendRequest");
    if (!IsOpen()) {
        return {};
    }
    mPort->ClearErrors();
    mPort->Purge();
    size_t written = 0;
    if (!mPort->Write(toSend_I, written) || written != toSend_I.size()) {
        const uint32_t error = mPort->LastError();
        DLog("Failed to write the data to the display\n");
        DLog("WriteFile failed (%d)\n", static_cast<int>(error));
        CloseIfGone();
        return {};
    }
    mPort->ClearErrors();
    Clock::PauseMs(static_cast<uint32_t>(delay_I * 1000));

    // The expected size is only a hint: everything the display sent is taken.
    ByteBuffer reply;
    reply.reserve(std::max<size_t>(expectedSize_I, kReadBlockSize));
    for (;;) {
        if (reply.size() >= kMaxReplySize) {
            DLog("CWinUSBConnector::SendRequest - the line does not stop sending; %u bytes dropped\n",
                 static_cast<unsigned>(reply.size()));
            mPort->Purge();
            return {};
        }
        ByteBuffer block;
        if (!mPort->Read(kReadBlockSize, block)) {
            DLog("ReadFile failed (%d)\n", static_cast<int>(mPort->LastError()));
            if (CloseIfGone()) {
                return {};
            }
            break;
        }
        if (block.empty()) {
            if (reply.empty()) {
                DLog("ReadFile empty (%d)\n", static_cast<int>(mPort->LastError()));
            }
            break;
        }
        reply.insert(reply.end(), block.begin(), block.end());
    }
    reply.push_back(Checksum(reply, Ddc::kReplyChecksumSeed));
    return reply;
}

std::string CWinUSBConnector::CapabilitiesString() {
    SReadInParts read;
    read.readPart = [this](uint16_t offset) {
        ByteBuffer inBuffer =
            SendRequest(BuildCapabilitiesRequest(offset), kCapabilitiesWaitSeconds, Ddc::kReplySize, 0);
        if (inBuffer.size() < HEADER_SIZE || IsNullMessage(inBuffer)) {
            return SPart::End();
        }
        // Passes by construction (SendRequest appends the checksum of what arrived); kept
        // because the protocol states it, and it would hold if a line ever carried its own.
        const uint8_t received = inBuffer.back();
        const uint8_t computed =
            Checksum(ByteBuffer(inBuffer.begin(), inBuffer.end() - 1), Ddc::kReplyChecksumSeed);
        if (received != computed) {
            VLR_ASSERT_FAIL("CapabilitiesString read checksum mismatch");
            DLog("CapabilitiesString:Read checksum failed %i %i\n", received, computed);
        }
        // Data runs from the header to the appended checksum, at most 32 bytes of it.
        const size_t available = inBuffer.size() - 1 > HEADER_SIZE ? inBuffer.size() - 1 - HEADER_SIZE : 0;
        const size_t count = std::min(available, Ddc::kMaxFragmentData);
        if (count == 0) {
            return SPart::End();  // an empty fragment ends the string
        }
        if (offset == 0) {
            VLR_ASSERT(inBuffer[HEADER_SIZE] == '(');
        }
        return SPart::Taken(
            ByteBuffer(inBuffer.begin() + HEADER_SIZE, inBuffer.begin() + HEADER_SIZE + count));
    };
    const ByteBuffer caps = ReadInParts(read).data;
    std::string capabilitiesStr(caps.begin(), caps.end());
    VLR_ASSERT(!capabilitiesStr.empty());
    VLR_ASSERT_AS(!capabilitiesStr.empty() && capabilitiesStr[0] == '(', "caps[0] == '('");
    // The pause and the trim come whether or not anything was collected.
    Clock::PauseMs(100);
    return TrimCapabilitiesString(caps);
}

ByteBuffer CWinUSBConnector::BuildEdidRequest() {
    return BuildEdidChunkRequest(Ddc::kWholeEdidIndex);
}

ByteBuffer CWinUSBConnector::ReadEDID(int32_t) {
    CScopedTimer timer("CWinUSBConnector::ReadEDID", " Send EDID request");
    ByteBuffer inBuffer = SendRequest(BuildEdidRequest(), kEdidWaitSeconds, kEdidSize, 0);
    if (Checksum(inBuffer, Ddc::kReplyChecksumSeed) != 0) {
        VLR_ASSERT_FAIL("ReadEDID read checksum mismatch");
        DLog("ReadEDID:Read checksum failed %i %i\n", inBuffer.empty() ? 0 : inBuffer.back(),
             Checksum(ByteBuffer(inBuffer.begin(), inBuffer.end() - (inBuffer.empty() ? 0 : 1)),
                      Ddc::kReplyChecksumSeed));
    }
    if (inBuffer.size() <= 1) {
        return {};  // nothing but the appended checksum
    }
    inBuffer.pop_back();
    if (DebugLog::IsOn(ELogLevel::Info)) {
        std::string text(inBuffer.begin(), inBuffer.end());
        DLog("Data read from Scalar in string form \n\"%s\"\n", text.c_str());
    }
    return inBuffer;
}

SFirmwareVersion CWinUSBConnector::FWVersion() {
    return ReadFirmwareVersionByGet("CWinUSBConnector");
}
