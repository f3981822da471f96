#include "support/TestMain.h"

#include <QCoreApplication>

int main(int argc, char** argv)
{
    usePrivateFolders();
    const QCoreApplication application(argc, argv);
    return TestRegistry::runNamed(argc, argv);
}
