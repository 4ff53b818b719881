#include <gtest/gtest.h>

#include <QCoreApplication>

// The tests of one program share one application, as what they test does.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
