#pragma once

#include <QApplication>
#include <QtTest>

/// Gives the process private home, configuration, data, cache and temporary folders below one
/// temporary folder, removed at exit, and the offscreen platform. Call before any QApplication.
void usePrivateFolders();

/// Defines main() for one test class: private folders, then the class under a QApplication.
#define TAVORAN_TEST_MAIN(TestClass)                                                                         \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        usePrivateFolders();                                                                                 \
        QApplication application(argc, argv);                                                                \
        TestClass test;                                                                                      \
        return QTest::qExec(&test, argc, argv);                                                              \
    }
