#include "quillrip/job/image_store.h"

#include <gtest/gtest.h>

#include <string>

namespace quillrip {
namespace {

std::unique_ptr<InputStream> keep(ImageStore& store, const std::string& images)
{
    MemoryInputStream stream({ reinterpret_cast<const std::uint8_t*>(images.data()), images.size() });
    return store.keep(stream);
}

std::string contentOf(InputStream& stream)
{
    std::string content;
    for (int c = stream.get(); c >= 0; c = stream.get())
        content += static_cast<char>(c);
    return content;
}

TEST(ImageStore, EveryStretchComesBackByItself)
{
    ImageStore store;
    const std::string large(300000, 'x');
    const auto first = keep(store, "first" + large);
    const auto second = keep(store, "second");
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first->get(), 'f');
    EXPECT_EQ(contentOf(*second), "second");
    const auto third = keep(store, "third");
    EXPECT_EQ(contentOf(*first), "irst" + large);
    EXPECT_EQ(contentOf(*third), "third");
}

TEST(ImageStore, WhatFindsNoRoomTakesNone)
{
    ImageStore store(10);
    EXPECT_FALSE(keep(store, "12345678901"));
    const auto kept = keep(store, "1234567890");
    ASSERT_TRUE(kept);
    EXPECT_FALSE(keep(store, "1"));
    EXPECT_EQ(contentOf(*kept), "1234567890");
}

} // namespace
} // namespace quillrip
