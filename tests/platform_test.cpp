// The stand-ins for the device's log and properties.
#include <android/log.h>
#include <gtest/gtest.h>
#include <sys/system_properties.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <string>
#include <tuple>
#include <vector>

namespace {

class Properties : public testing::Test {
 protected:
  // The file is read at the first look at a property.
  static void SetUpTestSuite() {
    const std::string path = testing::TempDir() + "platform_test.properties";
    std::ofstream(path) << "# a.comment=1\na.number=12\n\nno value\n"
                        << "a.equation=x=y\nan.empty=\n"
                        << "longest=" << std::string(91, 'x') << "\n"
                        << "too.long=" << std::string(92, 'x') << "\n"
                        << "set.later=old\n";
    setenv("ZUQEL_PROPERTIES", path.c_str(), 1);
    EXPECT_EQ(__system_property_set("set.later", "new"), 0);
  }
};

TEST_F(Properties, ComeFromTheFileAndFromTheProgram) {
  EXPECT_EQ(__system_property_set("set.too.long", std::string(92, 'x').c_str()),
            -1);
  struct Row {
    const char* name;
    std::string value;
  };
  const std::vector<Row> rows = {
      {"a.number", "12"}, {"a.equation", "x=y"},
      {"an.empty", ""},   {"longest", std::string(91, 'x')},
      {"too.long", ""},   {"set.later", "new"},
      {"unset", ""},      {"set.too.long", ""},
      {"no value", ""},   {"# a.comment", ""},
  };
  for (const Row& row : rows) {
    std::array<char, PROP_VALUE_MAX> value;
    value.fill('#');
    EXPECT_EQ(__system_property_get(row.name, value.data()),
              static_cast<int>(row.value.size()))
        << row.name;
    EXPECT_EQ(value.data(), row.value) << row.name;
  }
}

using Record = std::tuple<int, std::string, std::string>;
std::vector<Record>& Records() {
  static std::vector<Record> records;
  return records;
}

TEST(Log, GoesToTheLoggerFromTheLowestPriorityOn) {
  __android_log_set_logger([](const __android_log_message* message) {
    Records().emplace_back(message->priority, message->tag, message->message);
  });
  const std::string text(5000, 'x');
  EXPECT_EQ(__android_log_print(ANDROID_LOG_VERBOSE, "a", "%s", text.c_str()),
            1);
  EXPECT_EQ(__android_log_set_minimum_priority(ANDROID_LOG_WARN),
            ANDROID_LOG_DEFAULT);
  EXPECT_EQ(__android_log_print(ANDROID_LOG_INFO, "b", "lost"), -EPERM);
  EXPECT_EQ(__android_log_print(ANDROID_LOG_WARN, "c", "%s", ""), 1);
  EXPECT_EQ(__android_log_set_minimum_priority(ANDROID_LOG_DEFAULT),
            ANDROID_LOG_WARN);
  __android_log_set_logger(nullptr);
  EXPECT_EQ(Records(), (std::vector<Record>{{ANDROID_LOG_VERBOSE, "a", text},
                                            {ANDROID_LOG_WARN, "c", ""}}));
}

TEST(LogDeathTest, IsBriefOnStandardError) {
  const auto log_and_exit = [] {
    __android_log_print(ANDROID_LOG_ERROR, "System.out", "width %d", 640);
    __android_log_print(ANDROID_LOG_DEBUG, "x", "100%%");
    __android_log_print(99, "y", "odd");
    std::_Exit(0);
  };
  EXPECT_EXIT(log_and_exit(), testing::ExitedWithCode(0),
              "E/System.out\\( *[0-9]+\\): width 640\n"
              "D/x\\( *[0-9]+\\): 100%\n"
              "\\?/y\\( *[0-9]+\\): odd\n");
}

}  // namespace
