#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
    // Widget tests render without a display unless the run asked for a real one.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
