#include "simulator/image.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "simulator/house.h"

namespace velk::simulator {
namespace {

std::string textOf(const Store& store) {
  std::ostringstream out;
  writeImage(out, store);
  return out.str();
}

Store storeOf(const std::string& text) {
  std::istringstream in(text);
  return readImage(in);
}

TEST(ImageTest, TheHouseIsTheOneThatTestsAndExamplesLeanOn) {
  std::ifstream file(VELK_TESTS_DIR "/simulator/house.image");
  const std::string text((std::istreambuf_iterator<char>(file)), {});
  EXPECT_EQ(textOf(house()), text);
  EXPECT_TRUE(storeOf(text) == house());
}

TEST(ImageTest, ReadsWhatPeopleWriteAndWritesWholeLines) {
  const std::string zeros = " 00 00 00 00 00 00 00 00 00 00 00 00 00";
  EXPECT_EQ(textOf(storeOf("velk-memory 1\r\n# lamp\r\n\r\nV 05FF 01 ff\r\nH+ F00A 2A 2b\r\n"
                           "V+ ffff 7F\r\nend\r\nwhat follows is no part of it\n")),
            "velk-memory 1\nV  05F0 00 00" + zeros + " 01\nV  0600 FF 00 00" + zeros + "\nH+ F00A 2A 2B 00" +
                zeros + "\nV+ FFF0 00 00" + zeros + " 7F\nend\n");
}

TEST(ImageTest, SaysWhatIsWrongAndWhere) {
  const std::string sixteen = " 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f 10";
  const std::pair<std::string, const char*> rows[] = {
      {"", "line 1: this is no memory image"},
      {"\x7f"
       "ELF",
       "line 1: this is no memory image"},
      {"velk-memory 2\nend\n", "line 1: the image has version 2, known is version 1"},
      {"velk-memory 1\nV 0500 01\n", "the image is not complete: its last line, \"end\", is missing"},
      {"velk-memory 1\n\nX 0500 01\nend\n", "line 3: there is no memory \"X\""},
      {"velk-memory 1\nV\nend\n", "line 2: the address is missing"},
      {"velk-memory 1\nV 500 01\nend\n", "line 2: \"500\" is not a number of 4 hexadecimal digits"},
      {"velk-memory 1\nV 0500 0G\nend\n", "line 2: \"0G\" is not a number of 2 hexadecimal digits"},
      {"velk-memory 1\nV 0500 1\nend\n", "line 2: \"1\" is not a number of 2 hexadecimal digits"},
      {"velk-memory 1\nV 0500\nend\n", "line 2: a line holds 1 to 16 bytes"},
      {"velk-memory 1\nV 0500" + sixteen + "\nend\n", "taken"},
      {"velk-memory 1\nV 0500" + sixteen + " 11\nend\n", "line 2: a line holds 1 to 16 bytes"},
  };
  for (const auto& [image, said] : rows) {
    try {
      storeOf(image);
      EXPECT_STREQ("taken", said) << image;
    } catch (const ImageError& error) {
      EXPECT_STREQ(error.what(), said) << image;
    }
  }
}

}  // namespace
}  // namespace velk::simulator
