#pragma once

#include "diagnosis/MachineFacts.h"
#include "testing/core/ScratchFolder.h"

#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <vector>

namespace qncomm::testing {

/// A folder that stands for a machine's root: its processes, devices, groups and kernel messages.
/// There is one USB serial device, which the user "anna" may not open, and nothing is wrong else.
struct StagedMachine {
    static constexpr const char* Path = "/dev/ttyUSB0";

    StagedMachine() {
        Put("dev/ttyUSB0", "");
        ::chmod(Real(Path).c_str(), 0660);
        ::stat(Real(Path).c_str(), &mDevice);
        User({});
        Put("etc/passwd", "root:x:0:0::/root:/bin/sh\nanna:x:" + std::to_string(mDevice.st_uid + 1)
                              + ":100::/home/anna:/bin/sh\n");
        Group("");
        Process(1, "init");
        Put("dev/kmsg", "");
    }

    std::string Real(const std::string& path) const { return mFolder.Path() + path; }
    void Put(const std::string& name, const std::string& text) const {
        std::filesystem::create_directories(
            std::filesystem::path(mFolder.File(name)).parent_path());
        std::ofstream(mFolder.File(name)) << text;
    }
    /// This user is another one than the device's owner, and in these groups.
    void User(const std::vector<unsigned>& groups) const {
        const auto fourTimes = [](const char* name, unsigned number) {
            std::string line = name;
            for (int i = 0; i < 4; ++i)
                line += "\t" + std::to_string(number);
            return line + "\n";
        };
        std::string text = "Name:\tqnctl\n" + fourTimes("Uid:", mDevice.st_uid + 1)
                           + fourTimes("Gid:", mDevice.st_gid + 1) + "Groups:\t";
        for (const unsigned group : groups)
            text += std::to_string(group) + " ";
        Put("proc/self/status", text + "\n");
    }
    /// The members of the device's group, with commas between.
    void Group(const std::string& members) const {
        Put("etc/group", "dialout:x:" + std::to_string(mDevice.st_gid) + ":" + members + "\n");
    }
    /// A running process; its command line has an end mark behind each word.
    void Process(int number, const std::string& name, const std::string& line = {}) const {
        const std::string folder = "proc/" + std::to_string(number);
        Put(folder + "/comm", name + "\n");
        Put(folder + "/cmdline", line);
        std::filesystem::create_directories(mFolder.File(folder + "/fd"));
    }
    /// It has the device open.
    void Opens(int process) const {
        std::filesystem::create_symlink(Real(Path),
                                        mFolder.File("proc/" + std::to_string(process) + "/fd/5"));
    }
    MachineFacts Look(const std::string& path = Path) const {
        return ReadMachine(path, mFolder.Path());
    }
    /// It holds the device's lock, as the kernel lists it.
    void Locks(int process) const {
        std::ostringstream lock;
        lock << "1: FLOCK  ADVISORY  WRITE " << process << ' ' << std::hex << std::setfill('0')
             << std::setw(2) << major(mDevice.st_dev) << ':' << std::setw(2)
             << minor(mDevice.st_dev) << ':' << std::dec << mDevice.st_ino << " 0 EOF\n";
        Put("proc/locks", lock.str());
    }
    /// The device is gone.
    void Unplug() const { std::filesystem::remove(Real(Path)); }

    ScratchFolder mFolder;
    struct stat mDevice {};
};

} // namespace qncomm::testing
