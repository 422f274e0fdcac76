#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "fuzz/fuzz_targets.h"

namespace {

namespace fs = std::filesystem;

// Every input the fuzzers kept goes through its parser again on each ordinary test run, so
// a parser change that breaks on a known-hard input fails here without a fuzzing session.
TEST(FuzzCorpus, EveryKeptInputParsesCleanly) {
    for (const auto& target : corvane::fuzz::kTargets) {
        const fs::path folder = fs::path(CORVANE_FUZZ_CORPUS) / target.name;
        ASSERT_TRUE(fs::is_directory(folder)) << folder;
        std::size_t inputs = 0;
        for (const auto& entry : fs::directory_iterator(folder)) {
            std::ifstream in(entry.path(), std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(in), {}};
            target.run(bytes);
            ++inputs;
        }
        EXPECT_GT(inputs, 0u) << target.name;
    }
}

}  // namespace
