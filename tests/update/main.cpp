#include <QCoreApplication>
#include <gtest/gtest.h>

/// The network needs an event loop, which belongs to an application.
int main(int argumentCount, char** arguments)
{
    const QCoreApplication application(argumentCount, arguments);
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
