#include "cli/velk/report/page.h"

#include "cli/velk/report/style.h"

namespace velk::cli {
namespace {

Element picturesOf(Drawings drawings, const std::string& id) {
  Element lanes("ul", {{"class", "lanes"}});
  int number = 0;
  for (Drawing& drawing : drawings) {
    Element lane("li");
    lane.add(inlined(std::move(drawing), id + "-" + std::to_string(++number)));
    lanes.add(std::move(lane));
  }
  return lanes;
}

struct Section {
  Element element;
  Fates fates;
};

Section sectionOf(const Chapter& chapter, HouseView& is, HouseView* was) {
  const std::string headingId = std::string(chapter.id) + "-heading";
  Element section("section", {{"id", chapter.id}, {"aria-labelledby", headingId}});
  section.add(Element("h2", {{"id", headingId}}, chapter.title));
  const Rows rows = chapter.read(is);
  const Rows before = was == nullptr ? Rows() : chapter.read(*was);
  RowsTable table = tableOf(chapter.title, chapter.headings, rows, was == nullptr ? nullptr : &before);
  Drawings drawings = chapter.draw == nullptr ? Drawings() : chapter.draw(is, was);
  const bool isEmpty = rows.empty() && before.empty();
  if (!isEmpty || !drawings.empty()) section.add(Element("p", {{"class", "intro"}}, chapter.introduction));
  if (!drawings.empty()) section.add(picturesOf(std::move(drawings), chapter.id));
  section.add(isEmpty ? Element("p", chapter.whenEmpty) : std::move(table.table));
  return {std::move(section), table.fates};
}

Element contents(const std::vector<Chapter>& chapters, const std::vector<Section>& sections) {
  Element list("ol");
  for (std::size_t i = 0; i < chapters.size(); ++i) {
    Element item("li");
    item.add(Element("a", {{"href", std::string("#") + chapters[i].id}}, chapters[i].title));
    list.add(std::move(item.add(Element("span", textOf(sections[i].fates)))));
  }
  Element nav("nav", {{"aria-label", "Contents"}});
  nav.add(std::move(list));
  return nav;
}

Element headOf(const std::string& title) {
  Element head("head");
  head.add(Element("meta", {{"charset", "utf-8"}}));
  head.add(Element("title", title));
  head.add(Element("meta", {{"name", "viewport"}, {"content", "width=device-width,initial-scale=1"}}));
  head.add(Element("style", pageStyle()));
  return head;
}

/// "5 things changed", over all chapters.
std::string summaryOf(const std::vector<Section>& sections) {
  Fates all;
  for (const Section& section : sections) {
    all.added += section.fates.added;
    all.removed += section.fates.removed;
    all.changed += section.fates.changed;
  }
  if (all.added + all.removed + all.changed == 0) return "Nothing differs.";
  return "What differs is marked: " + std::to_string(all.added) + " added, " + std::to_string(all.removed) +
         " removed, " + std::to_string(all.changed) + " changed.";
}

Element headerOf(const Heading& heading) {
  Element header("header");
  header.add(Element("h1", heading.title));
  for (const std::string& line : heading.from) header.add(Element("p", {{"class", "from"}}, line));
  return header;
}

}  // namespace

std::string pageOf(const Heading& heading, const std::vector<Chapter>& chapters, HouseView& is,
                   HouseView* was) {
  std::vector<Section> sections;
  sections.reserve(chapters.size());
  for (const Chapter& chapter : chapters) sections.push_back(sectionOf(chapter, is, was));
  Element header = headerOf(heading);
  if (was != nullptr) header.add(Element("p", summaryOf(sections)));
  Element body("body");
  body.add(Element("a", {{"class", "skip"}, {"href", "#main"}}, "To the contents of the page"));
  body.add(std::move(header)).add(contents(chapters, sections));
  Element main("main", {{"id", "main"}});
  for (Section& section : sections) main.add(std::move(section.element));
  body.add(std::move(main));
  Element html("html", {{"xmlns", "http://www.w3.org/1999/xhtml"}, {"lang", "en"}});
  html.add(headOf(heading.title)).add(std::move(body));
  return "<!DOCTYPE html>\n" + html.print();
}

}  // namespace velk::cli
