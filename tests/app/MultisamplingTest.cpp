#include "app/Multisampling.h"

#include <gtest/gtest.h>

TEST(Multisampling, renderersOfTheProcessorAreKnown)
{
    EXPECT_TRUE(isSoftwareRenderer("llvmpipe (LLVM 15.0.6, 256 bits)"));
    EXPECT_TRUE(isSoftwareRenderer("softpipe"));
    EXPECT_TRUE(isSoftwareRenderer("Software Rasterizer"));
    EXPECT_TRUE(isSoftwareRenderer("Google SwiftShader"));
    EXPECT_TRUE(isSoftwareRenderer("GDI Generic"));
}

TEST(Multisampling, othersAreCards)
{
    EXPECT_FALSE(isSoftwareRenderer("Mesa Intel(R) UHD Graphics 620 (KBL GT2)"));
    EXPECT_FALSE(isSoftwareRenderer("NVIDIA GeForce RTX 3060/PCIe/SSE2"));
    EXPECT_FALSE(isSoftwareRenderer(""));
}
