#include "ui/Program.h"

#include <gtest/gtest.h>
#include <iostream>

int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    return runProgram(argc, argv, [] { return RUN_ALL_TESTS(); });
}
