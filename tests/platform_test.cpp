// The stand-ins for the device's log and properties, and the choice of a GPU.
#include <android/log.h>
#include <egl_display.h>
#include <gtest/gtest.h>
#include <sys/system_properties.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zuqel {
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

struct DevicesRow {
  std::string kinds;  // of the devices: s is software, h hardware
  std::optional<size_t> chosen;
  bool names_display;
  std::string places;  // e is the environment's, - surfaceless
};

TEST(EglDisplay, IsLookedForOnHardwareFirst) {
  for (const DevicesRow& row : std::vector<DevicesRow>{
           {"", {}, false, "-"},
           {"s", {}, true, "e-"},
           {"sh", {}, false, "1-"},
           {"hsh", {}, true, "e02-"},
           {"hsh", 1, true, "1"},
           {"hsh", 3, true, ""},
       }) {
    std::vector<driver::Device> devices;
    for (const char kind : row.kinds) {
      devices.emplace_back().is_software = kind == 's';
    }
    std::string places;
    for (const auto& [platform, device] :
         driver::PlacesOfDisplays(devices, row.chosen, row.names_display)) {
      const bool is_device = platform == driver::Platform::kDevice;
      const bool is_default = platform == driver::Platform::kDefault;
      places += is_device ? std::to_string(device) : is_default ? "e" : "-";
    }
    EXPECT_EQ(places, row.places) << row.kinds;
  }
}

}  // namespace
}  // namespace zuqel
