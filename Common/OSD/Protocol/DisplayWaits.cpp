#include "DisplayWaits.h"

#include "codes.h"

std::chrono::microseconds SDisplayWaits::SetToReply(uint8_t vcpCode_I) const {
    switch (vcpCode_I) {
        case vcpC_Luminance: return setLuminanceToReply;
        case vcpC_DisplayScaling: return setScalingToReply;
        default: return setToReply;
    }
}
