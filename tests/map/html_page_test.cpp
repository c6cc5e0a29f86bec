// The page: its document in a form that no text ends, its tables without the script, and what it allows to
// run. What a browser makes of it is tested in tests/page.

#include "map/html_page.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <nlohmann/json.hpp>

#include "map/base64.h"
#include "map/page_data.h"
#include "map/page_files.h"
#include "map/page_text.h"
#include "tests/map/written.h"

namespace trovisk::test {
namespace {

std::string Page(const DiskMap& map, const std::vector<Structure>& structures = {}) {
  std::string page;
  WriteMapAsPage(map, VisitorOf(structures), [&](std::string_view piece) { page += piece; });
  return page;
}

// The text between the two, behind the first of which nothing is looked for again.
std::string Between(std::string_view text, std::string_view before, std::string_view after) {
  const std::size_t from = text.find(before);
  if (from == std::string_view::npos) return "(none)";
  const std::string_view rest = text.substr(from + before.size());
  return std::string(rest.substr(0, rest.find(after)));
}

std::string PlainData(std::string_view page) {
  return Between(page, "<script type=\"application/json\" id=\"data\">", "</script>");
}

std::string Embedded(const std::vector<std::string>& pieces) {
  std::string written;
  PageData data([&](std::string_view text) { written += text; });
  for (const std::string& piece : pieces)
    data.Add(piece);
  data.Finish();
  return written;
}

TEST(HtmlText, MarkupBecomesText) {
  EXPECT_EQ(HtmlText("<a href=\"x\" id='y'>&amp;"), "&lt;a href=&quot;x&quot; id=&#39;y&#39;&gt;&amp;amp;");
}

TEST(HtmlNumber, DigitsStandInGroupsOfThreeFromFiveOn) {
  EXPECT_EQ(HtmlNumber(0), "0");
  EXPECT_EQ(HtmlNumber(2048), "2048");
  EXPECT_EQ(HtmlNumber(73727), "73<span class=\"group\">727</span>");
  EXPECT_EQ(HtmlNumber(196607), "196<span class=\"group\">607</span>");
  EXPECT_EQ(HtmlNumber(1234567), "1<span class=\"group\">234</span><span class=\"group\">567</span>");
}

TEST(PageDataTest, ShortDocumentStaysPlainAndEndsNoElement) {
  EXPECT_EQ(Embedded({"{\"name\": ", "\"</script>&<!--\"}"}),
            "<script type=\"application/json\" id=\"data\">"
            "{\"name\": \"\\u003c/script\\u003e\\u0026\\u003c!--\"}</script>");
}

TEST(PageDataTest, LongDocumentIsCompressedWhole) {
  std::string document;
  std::vector<std::string> pieces;
  for (int i = 0; document.size() <= 3 * PageData::kMostPlain; ++i) {
    pieces.push_back("\"piece " + std::to_string(i) + "\",");
    document += pieces.back();
  }
  const std::string written = Embedded(pieces);
  const std::vector<u8> packed =
      FromBase64(Between(written, "<script type=\"text/plain\" id=\"data\">", "</script>"));
  std::string unpacked(document.size() + 1, '\0');
  uLongf length = unpacked.size();
  ASSERT_EQ(uncompress(reinterpret_cast<Bytef*>(unpacked.data()), &length, packed.data(), packed.size()),
            Z_OK);
  unpacked.resize(length);
  EXPECT_EQ(unpacked, document);
  EXPECT_LT(written.size(), document.size() / 4);
}

TEST(HtmlPage, EveryPlaceOfTheTemplateIsFilled) {
  ASSERT_NE(kPageTemplate.find("{{script}}"), std::string_view::npos);
  const std::string page = Page({});
  EXPECT_EQ(page.find("{{"), std::string::npos);
  EXPECT_TRUE(page.starts_with("<!DOCTYPE html>\n"));
  EXPECT_TRUE(page.ends_with("</html>\n"));
}

TEST(HtmlPage, StyleAndScriptHoldNothingThatEndsTheirElement) {
  EXPECT_EQ(kPageStyle.find("</"), std::string_view::npos);
  EXPECT_EQ(kPageScript.find("</script"), std::string_view::npos);
  EXPECT_EQ(kPageScript.find("<!--"), std::string_view::npos);
  EXPECT_EQ(kPageScript.find("innerHTML"), std::string_view::npos);
  EXPECT_EQ(kPageScript.find("\nimport "), std::string_view::npos);
}

TEST(HtmlPage, NamesOfTheDiskAreTextEverywhere) {
  DiskMap map;
  map.disk.path = "<i>disk</i>.img";
  map.disk.sectorSize = 512;
  map.disk.sectors = 10;
  map.disk.scheme = map.disk.id = "<i>";
  map.extents.push_back(
      {.last = 9, .kind = ExtentKind::kPartition, .typeName = "<i>", .name = "</script>", .source = "<i>"});
  map.checks.push_back({0, "<i>", Verdict::kBad, "<i>", "<i>"});
  map.cut = {"<i>"};
  const std::string page = Page(
      map, {{.title = "<i>", .structure = "<i>", .messages = {}, .fields = {}, .text = {}, .bytes = {}}});
  EXPECT_EQ(page.find("<i>"), std::string::npos);
  EXPECT_EQ(nlohmann::json::parse(PlainData(page)).at("extents").at(0).at("name"), "</script>");
  EXPECT_NE(page.find("<h1>&lt;i&gt;disk&lt;/i&gt;.img</h1>"), std::string::npos);
}

TEST(HtmlPage, ReportEndsBeforeItsDumpAndBytesBeforeTheirZeros) {
  Structure structure{
      .sector = 7, .title = "T", .structure = "mbr", .messages = {}, .fields = {}, .text = {}, .bytes = {}};
  structure.text =
      "Reading sector # 7 [T]\n\nValue : 1\n\nReading sector # 7 [as a raw sector]\n\n0x000  01 00\n";
  structure.bytes = {1, 0, 2, 0, 0};
  const auto data = nlohmann::json::parse(PlainData(Page({}, {structure})));
  EXPECT_EQ(data.at("structures").at(0).at("text"), "Reading sector # 7 [T]\n\nValue : 1\n\n");
  EXPECT_EQ(data.at("structures").at(0).at("bytes"), Base64(std::vector<u8>{1, 0, 2}));
}

TEST(HtmlPage, VerdictSaysWhatIsWrong) {
  DiskMap map;
  EXPECT_NE(Page(map).find("<p class=\"verdict-pill\">No table, no volume found</p>"), std::string::npos);
  map.extents = {{.first = 1, .last = 9, .kind = ExtentKind::kPartition}};
  EXPECT_NE(Page(map).find("<p class=\"verdict-pill good\">Nothing wrong found</p>"), std::string::npos);
  map.checks = {{1, std::string(kVolumeRecognised), Verdict::kNotChecked, "zeros", "a volume"}};
  EXPECT_NE(Page(map).find("Nothing wrong, 1 volume not recognised"), std::string::npos);
  map.checks = {{1, "a", Verdict::kBad, "", ""},
                {2, "b", Verdict::kMissing, "", ""},
                {3, "c", Verdict::kMissing, "", ""}};
  EXPECT_NE(Page(map).find("1 check bad, 2 things missing"), std::string::npos);
  map.checks.erase(map.checks.begin());
  EXPECT_NE(Page(map).find("2 things missing"), std::string::npos);
}

TEST(HtmlPage, StillBarIsToScale) {
  DiskMap map;
  map.disk.sectorSize = 512;
  map.disk.sectors = 1000;
  map.extents.push_back({.first = 250, .last = 749, .kind = ExtentKind::kPartition, .typeName = "NTFS"});
  const std::string page = Page(map);
  EXPECT_NE(page.find("<rect x=\"25.000%\" y=\"0\" width=\"50.000%\""), std::string::npos);
  EXPECT_NE(page.find("<title>NTFS, first 250, last 749, 250.0 KiB</title>"), std::string::npos);
}

TEST(HtmlPage, LongTablesAreCutAndSaySo) {
  DiskMap map;
  map.disk.sectorSize = 512;
  map.extents.resize(503);
  const std::string page = Page(map);
  EXPECT_NE(page.find("<p class=\"cut\">3 more are not shown.</p>"), std::string::npos);
}

TEST(HtmlPage, SoAreThePartsOfADynamicDisk) {
  DiskMap map;
  map.dynamicDisk.emplace().orphans.resize(4005);
  EXPECT_NE(Page(map).find("<p class=\"cut\">5 more are not shown.</p>"), std::string::npos);
  map.dynamicDisk.emplace().volumes.resize(4006);
  EXPECT_NE(Page(map).find("<p class=\"cut\">6 more are not shown.</p>"), std::string::npos);
  map.dynamicDisk.emplace().volumes.resize(1);
  map.dynamicDisk->volumes[0].components.resize(4007);
  EXPECT_NE(Page(map).find("<p class=\"cut\">7 more are not shown.</p>"), std::string::npos);
}

TEST(HtmlPage, SaysBehindWhichSectorStructuresAreLeftOut) {
  std::string page;
  const auto visit = [](const std::function<void(const Structure&)>& /*visit*/) {
    return std::optional<u64>(2049);
  };
  WriteMapAsPage({}, visit, [&](std::string_view piece) { page += piece; });
  EXPECT_NE(page.find("<p class=\"alarm-note\">Structures behind sector 2049 are not among these.</p>"),
            std::string::npos);
  EXPECT_EQ(Page({}).find("are not among these"), std::string::npos);
}

TEST(HtmlPage, ShowsWhatBelongsTogetherWithoutItsScript) {
  DiskMap map;
  map.storageSpaces.emplace();
  map.storageSpaces->poolName = "<Pool>";
  EXPECT_NE(Page(map).find("<dt>Pool</dt><dd>&lt;Pool&gt;</dd>"), std::string::npos);
  EXPECT_EQ(Page({}).find("<dt>Pool</dt>"), std::string::npos);
}

}  // namespace
}  // namespace trovisk::test
