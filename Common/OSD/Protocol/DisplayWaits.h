#pragma once
// How long a display is given, by named event. The standard row is what the protocol and the
// firmware of most families need; a family that needs longer says so in its row, and every
// pause the display object, the settings delegate and the shared connector commands make is
// read from the display's row by its name.

#include <chrono>
#include <cstdint>

struct SDisplayWaits {
    using us = std::chrono::microseconds;
    // Between a Get VCP Feature request and reading its reply (also the firmware-level read).
    us writeToRead{70'000};
    // Between a Set VCP Feature request and reading its answer; luminance and display scaling
    // take longer (the protocol's own waits for those codes).
    us setToReply{70'000};
    us setLuminanceToReply{130'000};
    us setScalingToReply{250'000};
    // After every set, answered or not: the firmware acts on it.
    us afterWrite{50'000};
    // After a display-preset change, in the two steps the firmware was measured to take.
    us afterPresetChangeFirst{700'000};
    us afterPresetChangeSecond{1'300'000};
    us afterUniformityChange{1'000'000};
    // After a restore-factory-defaults or restore-colour-defaults command.
    us afterFactoryReset{5'000'000};
    // Families whose scaler restarts after a factory reset answer nothing this long.
    us scalerRestart{10'000'000};
    // Before the one repeat of a write that failed.
    us beforeRetry{60'000};
    // Before a restored preset is read back the second time.
    us restoredPresetSettles{60'000};
    // Between the save-settings request and its answer, and after an answered save.
    us saveToReply{220'000};
    us afterSave{200'000};
    // Between the scaler-reset message and its answer.
    us resetToReply{70'000};

    // The wait between a set request of this code and its answer.
    us SetToReply(uint8_t vcpCode_I) const;
};

// A wait as the connectors take it: seconds.
inline double Seconds(std::chrono::microseconds wait_I) {
    return static_cast<double>(wait_I.count()) / 1e6;
}
