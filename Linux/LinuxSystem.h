#pragma once
// The file-system and device calls of the Linux transports and discovery, behind one seam: the
// real system by default, a fake sysfs tree and fake device nodes in tests.

#include <optional>
#include <string>
#include <vector>

#include "ByteBuffer.h"

class ILinuxSystem {
public:
    virtual ~ILinuxSystem() = default;
    // The names in a folder (without "." and ".."); empty when it cannot be read.
    virtual std::vector<std::string> List(const std::string& folder_I) = 0;
    // A whole file; none when it cannot be read.
    virtual std::optional<ByteBuffer> Read(const std::string& path_I) = 0;
    // Where a symbolic link points; empty when the path is not one.
    virtual std::string LinkTarget(const std::string& path_I) = 0;
    // As open(2), close(2) and ioctl(2): -1 with errno set on failure.
    virtual int Open(const std::string& path_I, int flags_I) = 0;
    virtual int Close(int descriptor_I) = 0;
    virtual int Ioctl(int descriptor_I, unsigned long request_I, void* argument_I) = 0;
    // The device node of a sysfs class entry ("ttyUSB0" is /dev/ttyUSB0).
    virtual std::string DeviceNode(const std::string& name_I) { return "/dev/" + name_I; }
};

// The running system.
ILinuxSystem& RealLinuxSystem();
