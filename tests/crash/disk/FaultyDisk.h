#pragma once

// To be preloaded: a disk that is full, that loses power, or whose user is killed. What the program does to
// files below TAVORAN_DISK is
//   - written down in TAVORAN_DISK_JOURNAL, one operation after the other (DiskJournal.h);
//   - counted: before operation number TAVORAN_DISK_KILL the program kills itself;
//   - refused with ENOSPC when there is no room left (DiskRoom.h).
// With TAVORAN_DISK_NAMES=1 every file has a name from the start, as where O_TMPFILE is not known. Only what
// goes through the named functions of the C library is seen: streams of stdio and mapped files are not.

#include <dlfcn.h>
#include <mutex>
#include <string>

#define EXPORTED extern "C" __attribute__((visibility("default")))

/// Which files are followed, and what all that follows them shares.
namespace faultydisk {

/// Held by each operation from its count to its line in the journal.
[[nodiscard]] std::recursive_mutex& gate();

/// That of the environment, empty when there is none.
[[nodiscard]] const char* variable(const char* name);
[[nodiscard]] bool isSet(const char* name);

/// The function of the C library that stands behind ours.
template <typename Function> [[nodiscard]] Function* real(const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/// The path from the root; empty when it is none of ours.
[[nodiscard]] std::string ours(int directory, const char* path);

[[nodiscard]] bool isOurDescriptor(int descriptor);
/// False for those above what is followed.
bool follow(int descriptor);
void forget(int descriptor);

/// One operation more; the program ends here when it is the one to be killed before.
void countOperation();

} // namespace faultydisk
