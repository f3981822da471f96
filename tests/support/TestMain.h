#pragma once

#include <QtTest>

/// Gives the process private home, configuration, data, cache and temporary folders below one
/// temporary folder, removed at exit, and the offscreen platform. Call before any QApplication.
void usePrivateFolders();

/// The test classes of a program, each known by the name of its file.
class TestRegistry final {
public:
    using Run = int (*)(int argc, char** argv);

    /// A class of the file at `path`.
    TestRegistry(const char* path, Run run);

    /// What main() does: the first argument names the class, the others are for Qt Test.
    static int runNamed(int argc, char** argv);
};

/// Makes a test class one of its program's.
#define TAVORAN_TEST(TestClass)                                                                              \
    static const TestRegistry registered##TestClass(__FILE__, [](int argc, char** argv) {                    \
        TestClass test;                                                                                      \
        return QTest::qExec(&test, argc, argv);                                                              \
    });
