// Reports: what they read, measure and refuse. report_page_test.py looks at the
// page.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "image_samples.h"
#include "look/sharpness.h"
#include "look/thumbnail.h"
#include "program_run.h"
#include "report/html.h"
#include "report/json_files.h"
#include "report/report_plan.h"
#include "report/text.h"
#include "tool_error.h"

namespace zuqel::tools {
namespace {

using testing::HasSubstr;

std::vector<uint8_t> ToBytes(std::string_view text) {
  return {text.begin(), text.end()};
}

// What is said of a file of this text; empty if nothing is.
template <typename Parse>
std::string FaultOf(Parse parse, std::string_view text) {
  try {
    parse("m", ToBytes(text));
  } catch (const InputError& error) {
    return error.what();
  }
  return {};
}

std::string Points(const std::string& points) {
  return R"({"focus_points": [)" + points + "]}";
}

TEST(SceneMeta, RefusesWhatIsBroken) {
  std::string many = R"({"x": 1, "y": 2})";
  for (int i = 0; i < 64; ++i) many += R"(, {"x": 1, "y": 2})";
  const Cases cases = {
      {"", "m: is not JSON at byte 1"},
      {R"({"title": "a)", "m: is not JSON at byte 13"},
      {"{\"title\": \"\xff\"}", "m: is not JSON at byte 12"},
      {std::string(100000, '['), "m: is nested too deeply"},
      {"[]", "m: is not an object"},
      {R"({"title": 7})", "m: title: is not a text"},
      {R"({"title": ")" + std::string(1001, 'a') + "\"}",
       "m: title: is longer than 1000 bytes"},
      {R"({"focus_points": {}})", "m: focus_points: is not a list"},
      {R"({"focus_points_axb": []})", "focus_points does not end in _WxH"},
      {R"({"focus_points640x480": []})", "focus_points does not end in _WxH"},
      {R"({"focus_points_9000x1": []})", "focus_points: 9000x1 is "},
      {R"({"focus_points": [], "focus_points_8x6": []})",
       "m: has several lists of focus points"},
      {Points("3"), "m: focus_points: 1: is not an object"},
      {Points(many), "m: focus_points: has more than 64 points"},
      {Points(R"({"x": 1, "y": 1}, {"y": 1})"), "focus_points: 2: has no x"},
      {Points(R"({"x": -1, "y": 1})"), ": x: is not a whole number of 0 to 8"},
      {Points(R"({"x": 1.5, "y": 1})"), ": x: is not a whole number"},
      {Points(R"({"x": "1", "y": 1})"), ": x: is not a whole number"},
      {Points(R"({"x": 1, "y": 8192})"), ": y: is not a whole number"},
      {Points(R"({"x": 1, "y": 18446744073709551616})"), ": y: is not a whole"},
      {Points(R"({"x": 1, "y": 1e999})"), "holds a number that is too large"},
      {Points(R"({"x": 1, "y": 1, "what": []})"), ": what: is not a text"},
  };
  for (const auto& [text, fault] : cases) {
    EXPECT_THAT(FaultOf(ParseSceneMeta, text), HasSubstr(fault)) << text;
  }
  const SceneMeta meta = ParseSceneMeta(
      "m", ToBytes(R"({"a": [[{}]], "title": "T", "focus_points_640x480":
                   [{"x": 639, "y": 0}, {"what": "w", "x": 8191, "y": 7}]})"));
  EXPECT_EQ(meta.title, "T");
  EXPECT_EQ(meta.frame, (Size{640, 480}));
  ASSERT_EQ(meta.foci.size(), 2U);
  EXPECT_EQ(meta.foci[0].point.x, 639);
  EXPECT_EQ(meta.foci[1].what, "w");
}

TEST(ReportRecord, ComesBackAsItWentAndRefusesWhatIsBroken) {
  ReportEntry entry;
  entry.scene = "a \"b\"";
  entry.focus = {"w", {3, 4}};
  entry.maker = "gpu";
  entry.f_number = 1.23456;
  entry.picture = {"stem", {64, 48}};
  entry.sharpness = {0.25, std::nullopt};
  const std::string text = ToJson({entry, entry});
  const auto entries = ParseReport("m", ToBytes(text));
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[1].scene, entry.scene);
  EXPECT_EQ(entries[1].f_number, entry.f_number);
  EXPECT_EQ(entries[1].picture.file(), "stem.png");
  EXPECT_EQ(entries[1].sharpness.at_focus, 0.25);
  EXPECT_FALSE(entries[1].sharpness.elsewhere.has_value());

  const Cases changes = {
      {R"("format": 1|"format": 2)", "m: is of another version"},
      {R"("format": 1|"form": 1)", "m: has no format"},
      {"stem.png|../stem.png", "file: is not the name of a PNG file"},
      {"stem.png|.png", "file: is not the name of a PNG file"},
      {"stem.png|stem.jpg", "file: is not the name of a PNG file"},
      {"1.23456|\"1\"", "entries: 1: f_number: is not a number"},
      {R"("maker"|"marker")", "entries: 1: has no maker"},
  };
  for (const auto& [change, fault] : changes) {
    const size_t bar = change.find('|');
    std::string changed = text;
    changed.replace(changed.find(change.substr(0, bar)), bar,
                    change.substr(bar + 1));
    EXPECT_THAT(FaultOf(ParseReport, changed), HasSubstr(fault)) << change;
  }
}

TEST(ReportTexts, GoWhereTheyMay) {
  struct Case {
    const char *text, *utf8, *stem, *html;
  };
  const std::vector<Case> cases = {
      {"a-B_1.c", "a-B_1.c", "a-B_1.c", "a-B_1.c"},
      {"<a&'\">", "<a&'\">", "_a____", "&lt;a&amp;&#39;&quot;&gt;"},
      {"\xc3\xbc\xe2\x82\xac\xf0\x9f\x8d\x8a", "ü€🍊", "_________", "ü€🍊"},
      {"..%#", "..%#", "_..__", "..%#"},
      {"", "", "_", ""},
      // Cut off, too long for what it says, a surrogate, too large; controls.
      {"\xe2\x82", "��", "__", "��"},
      {"\xc0\xaf", "��", "__", "��"},
      {"\xed\xa0\x80", "���", "___", "���"},
      {"\xf4\x90\x80\x80", "����", "____", "����"},
      {"\n\x7f\xc2\x85", "����", "____", "����"},
  };
  for (const auto& [text, utf8, stem, html] : cases) {
    EXPECT_EQ(ToUtf8(text), utf8);
    EXPECT_EQ(ToFileStem(text), stem);
    EXPECT_EQ(Escape(ToUtf8(text)).markup(), html);
  }
  EXPECT_EQ(ToFileStem(std::string(255, 'a')).size(), 60U);
  EXPECT_EQ(
      Fill("{{b}}{{a}}<{{b}}>", {{"a", Escape("{{b}}")}, {"b", Escape("<")}})
          .markup(),
      "&lt;{{b}}<&lt;>");
  for (const char* form : {"{{c}}", "{{a"}) {
    EXPECT_THROW(Fill(form, {{"a", Html()}}), WorkError) << form;
  }
}

// Stripes of 0 and 200, four pixels wide, but for a grey square.
TEST(Sharpness, TellsTheFocusFromTheRest) {
  constexpr int kSide = 960;
  Nv21Frame frame = {kSide, kSide, {}, {}};
  for (int i = 0; i < kSide * kSide; ++i) {
    frame.luma.push_back(i % kSide / 4 % 2 == 0 ? 0 : 200);
  }
  const auto expect = [&](FocusPoint focus, double at_focus, double elsewhere) {
    const Sharpness found = MeasureSharpness(frame, {kSide, kSide}, focus);
    EXPECT_DOUBLE_EQ(found.at_focus, at_focus);
    EXPECT_DOUBLE_EQ(found.elsewhere, elsewhere);
  };
  expect({480, 480}, 400, 400);
  for (int y = 446; y <= 514; ++y) {
    for (int x = 446; x <= 514; ++x) {
      frame.luma[static_cast<size_t>(y) * kSide + static_cast<size_t>(x)] = 100;
    }
  }
  const Sharpness grey = MeasureSharpness(frame, {kSide, kSide}, {480, 480});
  EXPECT_EQ(grey.at_focus, 0);
  EXPECT_NEAR(grey.elsewhere, 400, 2);
  EXPECT_EQ(MeasureSharpness(frame, {kSide, kSide}, {0, 959}).at_focus, 400);
  // No pixel has all its neighbours.
  EXPECT_EQ(MeasureSharpness(frame, {2, 2}, {0, 0}).elsewhere, 0);
}

TEST(Thumbnails, KeepProportions) {
  EXPECT_EQ(ThumbnailSize({7, 3}, 3), (Size{3, 1}));
  EXPECT_EQ(ThumbnailSize({3, 4000}, 300), (Size{1, 300}));
  EXPECT_EQ(ThumbnailSize({7, 3}, 7), (Size{7, 3}));
}

TEST_F(CommandLine, ReportRefusesBadInput) {
  ASSERT_EQ(Shell("mkdir -p s/a s/b empty old && cd s && echo '{' > b/meta.json"
                  " && touch a/scene.png b/scene.png b/disparity.png")
                .exit_code,
            0);
  WritePicture(NoisePicture(64, 48), File("flat.png"));
  const std::string to = " -o new ";
  ExpectRefused({
      {"report flat.png", "--output is required"},
      {"report empty" + to, "empty: has no scene.png, and no folder with one"},
      {"report s" + to, "s/a: has no disparity*.png"},
      {"report s/b" + to, "s/b/meta.json: is not JSON at byte 3"},
      {"report flat.png" + to, "flat.png: has no depth inside"},
      {"report flat.png none.png --disparity d.png" + to,
       "--disparity and --depth are for one photo"},
      {"report flat.png --f-numbers 1,0.9" + to,
       "--f-numbers: 0.9 is not between 1 and 10"},
      {"report flat.png --f-numbers 1,1.0" + to, "1 is given twice"},
      {"report flat.png --makers cpu,gnu" + to,
       "--makers: gnu is not one of frame gpu "},
      {"report flat.png --makers cpu,cpu" + to, "cpu is given twice"},
      {"report flat.png --against old" + to, "old/report.json: cannot be"},
  });
  WriteBytes(File("old/report.json"), ToBytes(ToJson({})));
  ExpectRefused({{"report flat.png --against old -o old",
                  "old/report.json: is one of the inputs"}});
}

// What is nearest when nobody says, and what is farthest; a point of meta.json
// in a smaller frame; a point outside.
TEST(ReportFoci, AreWhereTheySay) {
  PhotoInput input;
  input.path = "p";
  input.size = {320, 240};
  input.depth = NamedDepth{"d", {}, true};
  DepthMap& map = input.depth->map = DepthMap(32, 24);
  map.is_native = true;
  std::fill(map.values.begin(), map.values.end(), 500.0F);
  for (int i = 0; i < 64; ++i) {
    map.At(2 + i % 8, 2 + i / 8) = 900;
    map.At(20 + i % 8, 14 + i / 8) = 100;
  }
  PlannedScene scene;
  scene.meta_file = "m";
  const auto expect = [&](const ReportOptions& options,
                          const std::vector<FocusPoint>& points) {
    const std::vector<NamedFocus> foci = ChooseFoci(scene, input, options);
    ASSERT_EQ(foci.size(), points.size());
    for (size_t i = 0; i < points.size(); ++i) {
      EXPECT_NEAR(foci[i].point.x, points[i].x, 10);
      EXPECT_NEAR(foci[i].point.y, points[i].y, 10);
    }
  };
  expect({}, {{60, 60}, {240, 180}});
  scene.meta = {"", {{"", {64, 47}}}, Size{64, 48}};
  EXPECT_THROW(ChooseFoci(scene, input, {}), InputError);
  scene.meta.foci[0].point.x = 63;
  expect({}, {{315, 235}});
  ReportOptions options;
  options.foci = {"1,2", "auto"};
  expect(options, {{1, 2}, {60, 60}});
}

}  // namespace
}  // namespace zuqel::tools
