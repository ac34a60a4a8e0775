// A host may link the library's own objects, whose namespace has names of the face.

#include "zel.hpp"
#include "zel/base/owned.h"

#include <gtest/gtest.h>

TEST(Face, works_beside_the_objects_of_the_library) {
    const zel::library library;
    EXPECT_EQ(zel::read_header("=?utf-8?Q?a?="), "a");
    EXPECT_EQ(zel::write_header("de", "é"), "=?iso-8859-15?Q?=E9?=");
}
