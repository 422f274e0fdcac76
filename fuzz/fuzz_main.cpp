// libFuzzer entry for one parser; CORVANE_FUZZ_TARGET names it at compile time.
#include <cstddef>
#include <cstdint>

#include "fuzz/fuzz_targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CORVANE_FUZZ_TARGET(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
