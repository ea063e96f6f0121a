// The page of a report, filled from the forms in page/.
#include "report/page.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "coordinates.h"
#include "look/frame_difference.h"
#include "look/thumbnail.h"
#include "page_parts.h"
#include "report/html.h"
#include "report/text.h"

namespace zuqel::tools {
namespace {

std::string Decimal(double number, int digits) {
  std::array<char, 64> text = {};
  static_cast<void>(
      std::snprintf(text.data(), text.size(), "%.*f", digits, number));
  return text.data();
}

std::string Plural(size_t count, const char* thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string Percent(const std::optional<double>& part) {
  return part ? Decimal(100 * *part, 1) + " %" : "no detail";
}

std::string Milliseconds(double time) {
  return Decimal(time, 2) + " ms";
}

Html Figure(const std::string& text) {
  return Fill(page::kFigureHtml, {{"text", Escape(text)}});
}

// A picture in the report, for people.
struct Shown {
  std::string name;     // all that it is
  std::string caption;  // what tells it from those beside it
  Html figures;
};

using Values = std::vector<std::pair<std::string_view, Html>>;

Values PictureValues(const KeptPicture& picture) {
  const Size size = ThumbnailSize(picture.size, kThumbnailSide);
  return {{"file", Escape(picture.file())},
          {"small", Escape(picture.small())},
          {"width", Escape(std::to_string(size.width))},
          {"height", Escape(std::to_string(size.height))}};
}

Values ShownValues(const KeptPicture& picture, const Shown& shown) {
  Values values = PictureValues(picture);
  values.insert(values.end(), {{"name", Escape(shown.name)},
                               {"caption", Escape(shown.caption)},
                               {"figures", shown.figures}});
  return values;
}

Html Still(const KeptPicture& picture, const Shown& shown) {
  return Fill(page::kStillHtml, ShownValues(picture, shown));
}

// The middle of the pixel, in percent of the picture.
void AddPlace(FocusPoint point, Size size, Values& values) {
  values.insert(
      values.end(),
      {{"left", Escape(Decimal((100.0 * point.x + 50) / size.width, 2))},
       {"top", Escape(Decimal((100.0 * point.y + 50) / size.height, 2))}});
}

// The viewer lays it over `before`.
Html Shot(const ReportEntry& entry, const Shown& shown,
          const KeptPicture& before, const char* before_name,
          const char* after_name) {
  Values values = ShownValues(entry.picture, shown);
  AddPlace(entry.focus.point, entry.picture.size, values);
  values.insert(values.end(), {{"before", Escape(before.file())},
                               {"before_name", Escape(before_name)},
                               {"after_name", Escape(after_name)}});
  return Fill(page::kShotHtml, values);
}

Html EntryShot(const ReportEntry& entry, const KeptPicture& source) {
  Shown shown = {Describe(entry),
                 entry.f_number ? "f/" + ToText(*entry.f_number)
                                : "fixed strength of blur",
                 Figure(Percent(entry.sharpness.at_focus) + " at the focus")};
  shown.figures += Figure(Percent(entry.sharpness.elsewhere) + " elsewhere");
  if (entry.frame_ms) shown.figures += Figure(Milliseconds(*entry.frame_ms));
  return Shot(entry, shown, source, "source", "result");
}

Html MakerRow(const MakerResult& maker, const KeptPicture& source) {
  Html shots;
  for (const ReportEntry& entry : maker.entries) {
    shots += EntryShot(entry, source);
  }
  if (maker.map) {
    Shown shown = {"map of " + maker.maker, "map", {}};
    if (maker.map_ms) shown.figures = Figure(Milliseconds(*maker.map_ms));
    shots += Still(*maker.map, shown);
  }
  const std::string note =
      maker.is_focus_sharp ? "" : ": blurs the background even in focus";
  return Fill(page::kMakerHtml,
              {{"name", Escape(maker.maker + note)}, {"shots", shots}});
}

Html FocusPart(const FocusResult& focus, const KeptPicture& source) {
  const auto& [what, point] = focus.focus;
  const std::string place =
      std::to_string(point.x) + "," + std::to_string(point.y);
  Html makers;
  for (const MakerResult& maker : focus.makers) {
    makers += MakerRow(maker, source);
  }
  Values values = PictureValues(source);
  AddPlace(point, source.size, values);
  values.insert(
      values.end(),
      {{"name", Escape("Focus " + place + (what.empty() ? what : ": " + what))},
       {"alt", Escape("source, with the focus point " + place + " marked")},
       {"makers", makers}});
  return Fill(page::kFocusHtml, values);
}

std::string IdOf(size_t scene) {
  return "scene-" + std::to_string(scene + 1);
}

Html ScenePart(const SceneResult& scene, size_t index) {
  Html foci;
  for (const FocusResult& focus : scene.foci) {
    foci += FocusPart(focus, scene.source);
  }
  const Shown source = {scene.name + ", source", "source",
                        Figure(ToText(scene.source.size))};
  Shown disparity = {scene.name + ", disparity", "disparity",
                     Figure(ToText(scene.disparity.size))};
  if (!scene.note.empty()) disparity.figures += Figure(scene.note);
  return Fill(page::kSceneHtml,
              {{"id", Escape(IdOf(index))},
               {"name", Escape(scene.name)},
               {"title", Escape(scene.title)},
               {"source", Still(scene.source, source)},
               {"disparity", Still(scene.disparity, disparity)},
               {"foci", foci}});
}

Html ChangePart(const Change& change) {
  const ReportEntry& entry = change.entry;
  const std::string name = Describe(entry);
  const auto figures = [](const SharpnessKept& sharpness) {
    Html html = Figure(Percent(sharpness.at_focus) + " at the focus");
    html += Figure(Percent(sharpness.elsewhere) + " elsewhere");
    return html;
  };
  Html shots = Still(change.earlier, {name + ", earlier", "earlier",
                                      figures(change.earlier_sharpness)});
  shots += Shot(entry, {name, "now", figures(entry.sharpness)}, change.earlier,
                "earlier", "now");
  shots += Still(
      change.difference,
      {name + ", difference", "difference",
       Figure("amplified " + std::to_string(kDifferenceGain) + " times")});
  return Fill(page::kChangeHtml,
              {{"psnr", Escape(Decimal(change.psnr_db, 2) + " dB")},
               {"name", Escape(name)},
               {"figures", Escape("largest difference of a colour: " +
                                  std::to_string(change.largest))},
               {"shots", shots}});
}

Html ChangesPart(const Findings& findings) {
  Html changes, notes;
  for (const Change& change : findings.changes) changes += ChangePart(change);
  for (const std::string& note : findings.notes) {
    notes += Fill(page::kNoteHtml, {{"text", Escape(note)}});
  }
  if (!findings.notes.empty()) {
    notes = Fill(page::kNotesHtml, {{"notes", notes}});
  }
  const std::string summary = Plural(findings.changes.size(), "picture") +
                              " changed, worst first; " +
                              std::to_string(findings.same) +
                              " the same to the last bit. PSNR is of "
                              "all three colours.";
  return Fill(page::kChangesHtml, {{"folder", Escape(findings.folder)},
                                   {"summary", Escape(summary)},
                                   {"changes", changes},
                                   {"notes", notes}});
}

Html Link(const std::string& id, const std::string& name) {
  return Fill(page::kLinkHtml, {{"id", Escape(id)}, {"name", Escape(name)}});
}

struct Summary {
  size_t pictures = 0;
  bool has_times = false;
};

Summary Summarise(const std::vector<SceneResult>& scenes) {
  Summary summary;
  for (const SceneResult& scene : scenes) {
    for (const FocusResult& focus : scene.foci) {
      for (const MakerResult& maker : focus.makers) {
        summary.pictures += maker.entries.size();
        summary.has_times |= maker.entries.front().frame_ms.has_value();
      }
    }
  }
  return summary;
}

}  // namespace

std::string WritePage(const std::vector<SceneResult>& scenes,
                      const std::optional<Findings>& findings) {
  const Summary summary = Summarise(scenes);
  Html links, parts, changes;
  std::string title;
  if (findings) {
    links += Link("changes", "Changes");
    changes = ChangesPart(*findings);
  }
  for (size_t i = 0; i < scenes.size(); ++i) {
    title += (i == 0 ? "" : ", ") + scenes[i].name;
    links += Link(IdOf(i), scenes[i].name);
    parts += ScenePart(scenes[i], i);
  }
  const std::string counts = Plural(scenes.size(), "scene") + ", " +
                             Plural(summary.pictures, "rendered picture");
  return Fill(page::kPageHtml,
              {{"title", Escape(title)},
               {"style", Fill(page::kPageCss)},
               {"script", Fill(page::kPageJs)},
               {"summary", Escape(counts)},
               {"links", links},
               {"changes", changes},
               {"scenes", parts},
               {"times", summary.has_times ? Fill(page::kTimesHtml) : Html()}})
      .markup();
}

}  // namespace zuqel::tools
