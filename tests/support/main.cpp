#include "support/TestMain.h"

#include <QApplication>

int main(int argc, char** argv)
{
    usePrivateFolders();
    const QApplication application(argc, argv);
    return TestRegistry::runNamed(argc, argv);
}
