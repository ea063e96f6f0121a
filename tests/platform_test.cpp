// The stand-ins for the device's log and properties.
#include <android/log.h>
#include <gtest/gtest.h>
#include <sys/system_properties.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

namespace {

TEST(Properties, ComeFromTheFileAndFromTheProgram) {
  const std::string longest(91, 'x'), too_long(92, 'x');
  const std::string path = testing::TempDir() + "platform_test.properties";
  std::ofstream(path) << "# a.comment=1\na.number=12\n\nno value\n"
                      << "a.equation=x=y\nlongest=" << longest
                      << "\ntoo.long=" << too_long << "\nset.later=old\n";
  // The file is read at the first look at a property.
  setenv("ZUQEL_PROPERTIES", path.c_str(), 1);
  EXPECT_EQ(__system_property_set("set.later", "new"), 0);
  EXPECT_EQ(__system_property_set("set.too.long", too_long.c_str()), -1);
  const std::map<std::string, std::string> expected = {
      {"a.number", "12"},   {"a.equation", "x=y"}, {"longest", longest},
      {"too.long", ""},     {"set.later", "new"},  {"unset", ""},
      {"set.too.long", ""}, {"no value", ""},      {"# a.comment", ""}};
  for (const auto& [name, text] : expected) {
    std::string value(PROP_VALUE_MAX, '#');
    EXPECT_EQ(__system_property_get(name.c_str(), value.data()),
              static_cast<int>(text.size()));
    EXPECT_STREQ(value.c_str(), text.c_str()) << name;
  }
}

TEST(LogDeathTest, ShowsWhatIsImportantEnough) {
  const auto log_and_exit = [] {
    __android_log_print(ANDROID_LOG_DEBUG, "x", "%s",
                        std::string(5000, '.').c_str());
    __android_log_set_minimum_priority(ANDROID_LOG_ERROR);
    __android_log_print(ANDROID_LOG_WARN, "y", "lost");
    __android_log_print(ANDROID_LOG_ERROR, "System.out", "width %d", 640);
    std::_Exit(0);
  };
  EXPECT_EXIT(log_and_exit(), testing::ExitedWithCode(0),
              "^D/x\\( *[0-9]+\\): [.]{1023}\n"
              "E/System.out\\( *[0-9]+\\): width 640\n$");
}

}  // namespace
