#include <QCoreApplication>
#include <gtest/gtest.h>

int main(int argumentCount, char** arguments)
{
    const QCoreApplication application(argumentCount, arguments);
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
