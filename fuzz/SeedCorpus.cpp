// Writes the fuzzers' seed corpora: the captured capabilities strings and EDIDs of the shared
// test data, the interface texts, and the virtual display's own answers, recorded while the
// real connectors hold the conversation each fuzzer replays.
//
//   vlr_fuzz_seeds TESTDATA_DIR STRINGS_DIR OUT_DIR

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "CVcpHIDConnector.h"
#include "CVirtualDisplay.h"
#include "CVirtualHidDevice.h"
#include "CVirtualSerialPort.h"
#include "CapabilitiesCache.h"
#include "CapabilitiesReader.h"
#include "FuzzInput.h"
#include "I2CConnectorDP.h"
#include "VirtualDisplayPresets.h"
#include "WinUSBConnector.h"
#include "codes.h"

namespace fs = std::filesystem;

namespace {

ByteBuffer ReadFile(const fs::path& path_I) {
    std::ifstream in(path_I, std::ios::binary);
    return ByteBuffer(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteSeed(const fs::path& folder_I, const std::string& name_I, const ByteBuffer& bytes_I) {
    fs::create_directories(folder_I);
    std::ofstream out(folder_I / name_I, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes_I.data()), static_cast<std::streamsize>(bytes_I.size()));
}

ByteBuffer Bytes(const std::string& text_I) {
    return ByteBuffer(text_I.begin(), text_I.end());
}

class CRecordingHid : public CVcpHIDConnector {
public:
    CRecordingHid(std::shared_ptr<CVirtualDisplay> display_I, ByteBuffer& record_I)
        : mDevice(std::move(display_I)), mRecord(record_I) {}
    bool IsOpen() const override { return true; }
    bool OpenHIDDevice(const std::string&) override { return true; }
    bool CloseHIDDevice() override { return true; }
    bool SetFeature(const ByteBuffer& report_I) override { return mDevice.SetFeature(report_I); }
    bool GetFeature(ByteBuffer& report_IO) override {
        const bool ok = mDevice.GetFeature(report_IO);
        AppendRecord(mRecord, report_IO);
        return ok;
    }

private:
    CVirtualHidDevice mDevice;
    ByteBuffer& mRecord;
};

class CRecordingPort : public CVirtualSerialPort {
public:
    CRecordingPort(std::shared_ptr<CVirtualDisplay> display_I, ByteBuffer& record_I)
        : CVirtualSerialPort(std::move(display_I)), mRecord(record_I) {}
    bool Read(size_t maxBytes_I, ByteBuffer& data_O) override {
        const bool ok = CVirtualSerialPort::Read(maxBytes_I, data_O);
        AppendRecord(mRecord, data_O);
        return ok;
    }

private:
    ByteBuffer& mRecord;
};

class CRecordingI2C : public CI2CConnectorDP {
public:
    CRecordingI2C(std::shared_ptr<CVirtualDisplay> display_I, ByteBuffer& record_I)
        : mDisplay(std::move(display_I)), mRecord(record_I) {}
    bool IsOpen() const override { return true; }
    ByteBuffer SendRequest(const ByteBuffer& request_I, double, unsigned, int32_t) override {
        ByteBuffer reply = mDisplay->Handle(request_I);
        AppendRecord(mRecord, reply);
        return reply;
    }

private:
    std::shared_ptr<CVirtualDisplay> mDisplay;
    ByteBuffer& mRecord;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: vlr_fuzz_seeds TESTDATA_DIR STRINGS_DIR OUT_DIR\n");
        return 2;
    }
    UseVirtualClock();
    const fs::path testdata = argv[1];
    const fs::path strings = argv[2];
    const fs::path out = argv[3];

    for (const auto& entry : fs::directory_iterator(testdata / "caps")) {
        if (entry.path().extension() == ".txt") {
            const ByteBuffer caps = ReadFile(entry.path());
            WriteSeed(out / "capabilities", entry.path().filename().string(), caps);
            WriteSeed(out / "capabilities_trim", entry.path().filename().string(), caps);
        }
    }
    for (const auto& entry : fs::directory_iterator(testdata / "edid")) {
        if (entry.path().extension() == ".bin") {
            WriteSeed(out / "edid", entry.path().filename().string(), ReadFile(entry.path()));
        }
    }
    for (const auto& entry : fs::directory_iterator(strings)) {
        WriteSeed(out / "coded_strings", entry.path().filename().string(), ReadFile(entry.path()));
    }

    for (const SVirtualDisplayModel& model : VirtualDisplayPresets()) {
        auto display = std::make_shared<CVirtualDisplay>(model);
        const std::string& caps = display->CapabilitiesString();
        WriteSeed(out / "capabilities", model.key, Bytes(caps));
        WriteSeed(out / "capabilities_trim", model.key, Bytes(caps + std::string(7, '\0') + "junk)"));
        WriteSeed(out / "edid", model.key, display->Edid());
        WriteSeed(out / "edid", model.key + "-id", Bytes("VLR" + std::to_string(model.edidProductCode)));

        ByteBuffer replies{vcpC_Luminance, 1};
        AppendRecord(replies, display->Handle(BuildGetVCPRequest(vcpC_Luminance)));
        for (uint8_t code : {vcpC_DisplayFirmwareLevel, vcpC_SelectColorPreset, vcpC_Contrast, vcpC_Gamma}) {
            AppendRecord(replies, display->Handle(BuildGetVCPRequest(code)));
        }
        AppendRecord(replies, display->Handle(BuildSetVCPRequest(vcpC_Contrast, 40)));
        AppendRecord(replies, display->Handle(BuildSaveCurrentSettingsRequest()));
        WriteSeed(out / "reply_checks", model.key, replies);

        ByteBuffer hid;
        {
            CRecordingHid connector(display, hid);
            connector.SendRequest(BuildGetVCPRequest(0x10), 0.07, 38, 0);
            connector.SendRequest(BuildSetVCPRequest(0x12, 40), 0.07, 38, 0);
            connector.SendRequest(BuildSaveCurrentSettingsRequest(), 0.07, 38, 0);
            connector.MonitorName();
            connector.SerialNumber(-1);
            connector.FWVersion();
            connector.CapabilitiesString();
        }
        WriteSeed(out / "hid_reports", model.key, hid);

        ByteBuffer serial;
        {
            CWinUSBConnector connector(std::make_unique<CRecordingPort>(display, serial));
            connector.Open("COM5");
            connector.CapabilitiesString();
            connector.ReadEDID(-1);
            connector.MonitorName();
            connector.FWVersion();
            connector.SaveSettingsToScalar();
        }
        WriteSeed(out / "serial_reads", model.key, serial);

        ByteBuffer tables;
        {
            CRecordingI2C connector(display, tables);
            connector.CapabilitiesString();
            connector.FWVersion();
            connector.ReadEDID(-1);
            ReadCapabilitiesByOffset(connector);
        }
        WriteSeed(out / "vendor_tables", model.key, tables);
    }
    // The keeper's files as the tool writes them (the first byte picks the reader).
    WriteSeed(out / "settings_files", "profile",
              Bytes(std::string(1, '\0') +
                    R"({"model": "Canvas 22 Pro", "serial": "VC1060A40892", "settings": {"brightness": 70,)"
                    R"( "colour-mode": 2, "colour-space": "adobe-rgb", "gain-red": 98}})"));
    WriteSeed(out / "settings_files", "kept",
              Bytes(std::string(1, '\1') +
                    R"({"kept": [{"model": "Studio 24", "serial": "VC1070A40934", "profile": "/p.json"}]})"));
    WriteSeed(out / "settings_files", "rules",
              Bytes(std::string(1, '\2') +
                    R"({"rules": [{"application": "paint.exe", "profile": "adobe-rgb.json"}]})"));
    // The README's studio file.
    WriteSeed(out / "settings_files", "studio", Bytes(std::string(1, '\3') + R"({"displays": [
  {"model": "Canvas 22 Pro", "keep": true,
   "settings": {"colour-space": "adobe-rgb", "brightness": 55, "contrast": 50, "gamma": 2.2}},
  {"model": "Studio 24", "settings": {"brightness": 60, "colour-temperature": "6500k"}},
  {"model": "Studio 24", "serial": "VC1070A40934", "settings": {"brightness": 75}}]})"));

    // A capabilities cache as the program writes it.
    const fs::path cacheFile = out / "capabilities-cache.json";
    {
        CCapabilitiesCache cache(cacheFile.string());
        cache.Store({"VLR", 0x1060, "VC1060A40892", "graphics driver"}, {3, 1, 2},
                    {"(prot(monitor)type(lcd)model(Canvas 22 Pro)vcp(02 04 10 12 14(04 05 06 08 0B)))",
                     "Canvas 22 Pro"});
        cache.Store({"VLR", 0x1070, "VC1070A40934", "HID"}, {6, 0, 1}, {"(vcp(10 12 6B))", "Studio 24"});
    }
    WriteSeed(out / "capabilities_cache", "two-displays", ReadFile(cacheFile));
    fs::remove(cacheFile);

    // The tool's commands as the README shows them, with and without revert notes before them.
    const auto command = [&](const std::string& name_I, const std::string& notes_I,
                             std::vector<std::string> args_I) {
        std::string bytes = notes_I + '\0';
        for (const std::string& arg : args_I) {
            bytes += arg + '\0';
        }
        WriteSeed(out / "command_line", name_I, Bytes(bytes));
    };
    command("list", "", {"list", "--json"});
    command("get", "", {"get", "0", "brightness", "contrast", "0x14"});
    command("set", "", {"set", "1", "brightness=60", "colour-temperature=6500k", "--save"});
    command("choices", "", {"set", "0", "colour-space=Adobe-RGB", "gamma=2.4", "aspect-ratio=keep-ratio"});
    command("revert", R"({"VC1060A40892": {"10": 33, "12": 40}})", {"revert", "0"});
    command("reset", "", {"reset", "0", "colour"});
    command("caps", "", {"caps", "2", "--json"});
    command("restore", "", {"restore", "--all", "--wait", "15"});
    command("keep", "", {"keep", "--list"});
    return 0;
}
