#include "LinuxSystem.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <climits>
#include <fstream>
#include <iterator>

namespace {

class CRealLinuxSystem final : public ILinuxSystem {
public:
    std::vector<std::string> List(const std::string& folder_I) override {
        std::vector<std::string> names;
        DIR* folder = opendir(folder_I.c_str());
        if (folder == nullptr) {
            return names;
        }
        while (dirent* entry = readdir(folder)) {
            const std::string name = entry->d_name;
            if (name != "." && name != "..") {
                names.push_back(name);
            }
        }
        closedir(folder);
        return names;
    }
    std::optional<ByteBuffer> Read(const std::string& path_I) override {
        std::ifstream in(path_I, std::ios::binary);
        if (!in) {
            return std::nullopt;
        }
        return ByteBuffer(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    std::string LinkTarget(const std::string& path_I) override {
        char target[PATH_MAX];
        const ssize_t length = readlink(path_I.c_str(), target, sizeof(target) - 1);
        return length > 0 ? std::string(target, static_cast<size_t>(length)) : std::string();
    }
    int Open(const std::string& path_I, int flags_I) override {
        return open(path_I.c_str(), flags_I | O_CLOEXEC);
    }
    int Close(int descriptor_I) override { return close(descriptor_I); }
    int Ioctl(int descriptor_I, unsigned long request_I, void* argument_I) override {
        return ioctl(descriptor_I, request_I, argument_I);
    }
};

}  // namespace

ILinuxSystem& RealLinuxSystem() {
    static CRealLinuxSystem system;
    return system;
}
