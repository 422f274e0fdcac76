#include "sources/kernel_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "sources/temp_tree.h"

namespace corvane::sources {
namespace {

using testing::TempTree;

std::string pathIn(const TempTree& tree, const char* name) {
    return (tree.root() / name).string();
}

TEST(KernelFile, ReadsWholeFileAndFollowsRewritesThroughKeptDescriptor) {
    TempTree tree;
    const std::string big(10000, 'x');  // beyond the first buffer
    tree.write("f", big);
    KernelFile file(pathIn(tree, "f"));
    EXPECT_EQ(file.read(), big);
    ASSERT_TRUE(file.isOpen());

    tree.write("f", "short\n");
    EXPECT_EQ(file.read(), "short\n");
    EXPECT_TRUE(file.isOpen());
}

TEST(KernelFile, FailsAndStaysClosedForWhatIsNotAReadableKernelFile) {
    TempTree tree;
    tree.write("empty", "");
    tree.makeDirectory("dir");
    ASSERT_EQ(::mkfifo(pathIn(tree, "fifo").c_str(), 0600), 0);  // would block a plain open
    for (const char* name : {"missing", "empty", "dir", "fifo"}) {
        KernelFile file(pathIn(tree, name));
        EXPECT_EQ(file.read(), std::nullopt) << name;
        EXPECT_FALSE(file.isOpen()) << name;
    }
}

TEST(KernelFile, SizeCapRejectsLargerFiles) {
    TempTree tree;
    tree.write("f", std::string(64, 'a'));
    EXPECT_TRUE(KernelFile(pathIn(tree, "f"), 64).read());
    EXPECT_FALSE(KernelFile(pathIn(tree, "f"), 63).read());

    ASSERT_EQ(::truncate(pathIn(tree, "f").c_str(), 2 * KernelFile::kDefaultMaxBytes), 0);
    KernelFile huge(pathIn(tree, "f"));
    EXPECT_EQ(huge.read(), std::nullopt);
    EXPECT_FALSE(huge.isOpen());
}

TEST(KernelFile, ReadParsedReopensOnceOnlyForAKeptDescriptor) {
    TempTree tree;
    tree.write("f", "v\n");
    KernelFile file(pathIn(tree, "f"));
    int calls = 0;
    auto failFirst = [&calls](std::string_view) {
        return ++calls == 1 ? std::nullopt : std::optional<int>(7);
    };
    // Not open yet: one attempt, and the file is left closed.
    EXPECT_EQ(readParsed(file, failFirst), std::nullopt);
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(file.isOpen());

    ASSERT_TRUE(file.read());
    calls = 0;
    EXPECT_EQ(readParsed(file, failFirst), 7);
    EXPECT_EQ(calls, 2);

    // Replaced by rename, as an editor or a package update does: the new file is read.
    tree.write("g", "new\n");
    std::rename(pathIn(tree, "g").c_str(), pathIn(tree, "f").c_str());
    auto text = [](std::string_view bytes) { return std::optional<std::string>(bytes); };
    EXPECT_EQ(readParsed(file, text), "new\n");
}

}  // namespace
}  // namespace corvane::sources
