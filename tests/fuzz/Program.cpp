// A program of fuzz targets. Called as fuzz_NAME it is the target of that name.

#include "fuzz/Target.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

namespace {

std::map<std::string, fuzz::Attempt>& targets()
{
    static std::map<std::string, fuzz::Attempt> all;
    return all;
}

fuzz::Attempt chosen = nullptr;

} // namespace

fuzz::Target::Target(const char* name, Attempt attempt)
{
    targets().emplace(name, attempt);
}

// libFuzzer calls both of these.
extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** arguments)
{
    const std::string called = **arguments;
    const std::string name = called.substr(called.rfind('/') + 1);
    const auto found = targets().find(name.substr(name.find('_') + 1));
    if (found == targets().end()) {
        std::fprintf(stderr, "%s is no target; call this program by the name of one\n", called.c_str());
        std::exit(1);
    }
    chosen = found->second;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return chosen(data, size);
}
