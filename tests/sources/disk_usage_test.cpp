#include "sources/disk_usage.h"

#include <gtest/gtest.h>

#include <cmath>

namespace corvane::sources {
namespace {

TEST(DiskUsagePercent, UsedShareOfTheVolume) {
    EXPECT_EQ(diskUsagePercent({500e9, 125e9}), 75.0);
    EXPECT_EQ(diskUsagePercent({500e9, 500e9}), 0.0);
    EXPECT_EQ(diskUsagePercent({500e9, 0.0}), 100.0);
    EXPECT_TRUE(std::isnan(diskUsagePercent({0.0, 0.0})));
}

TEST(DiskReader, MeasuresTheVolumeOfTheHomeItIsGivenOrNothing) {
    std::vector<std::string> asked;
    DiskReader reader([] { return std::optional<std::string>("/home/ada"); },
                      [&asked](const std::string& path) {
                          asked.push_back(path);
                          return std::optional<VolumeSize>({500e9, 125e9});
                      });
    const auto volume = reader.read();
    ASSERT_TRUE(volume);
    EXPECT_EQ(volume->freeBytes, 125e9);
    EXPECT_EQ(asked, std::vector<std::string>{"/home/ada"});

    DiskReader noHome([] { return std::optional<std::string>(); },
                      [](const std::string&) {
                          return std::optional<VolumeSize>({1.0, 1.0});
                      });
    EXPECT_EQ(noHome.read(), std::nullopt);
}

TEST(StatVolume, FailsForAPathThatDoesNotExist) {
    EXPECT_EQ(statVolume("/nonexistent/corvane/home"), std::nullopt);
    EXPECT_EQ(statVolume(""), std::nullopt);
}

}  // namespace
}  // namespace corvane::sources
