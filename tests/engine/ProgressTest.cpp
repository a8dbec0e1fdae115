#include "Base/Progress.h"

#include "Files/AtomicFile.h"
#include "Import/Full/FullMessage.h"
#include "support/Importing.h"

#include <iterator>
#include <memory>

namespace {

constexpr int kTypes = 3000;

CString numbered(const CString& before, const std::function<CString(const CString&)>& piece, const CString& behind)
{
    CString all = before;
    for (int i = 0; i < kTypes; ++i)
        all += piece(std::to_string(i));
    return all + behind;
}

struct Source
{
    const char* importer;
    bool isFull;
    CString text;
} const kSources[] = {
    {"dtd", false,
     numbered(
         "", [](auto& i) { return "<!ELEMENT r" + i + " (a, b" + i + "*, c)>\n"; }, "")},
    {"dtd", true,
     numbered(
         "", [](auto& i) { return "<!ELEMENT r" + i + " (a, b" + i + "*, c)>\n"; }, "")},
    {"xml", false,
     numbered(
         "<x>", [](auto& i) { return "<r" + i + " a='1'><b" + i + "/></r" + i + ">"; }, "</x>")},
    {"xsd", false,
     numbered(
         "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element name='e'><xs:complexType/></xs:element>",
         [](auto& i) { return "<xs:complexType name='t" + i + "'><xs:attribute name='a" + i + "'/></xs:complexType>"; },
         "</xs:schema>")},
    {"btd", false,
     numbered(
         "<m>",
         [](auto& i) {
             return "<BROKERTYPEDESCRIPTION NAME='\\t" + i + "'><ROW><FIELD NAME='f' TYPE='String'/></ROW>" +
                    "</BROKERTYPEDESCRIPTION>";
         },
         "</m>")},
};

std::unique_ptr<MsgBase> importerOf(const Source& source)
{
    MsgUIDescriptor** row = g_amud;
    while ((*row)->querySource().word != CString(source.importer))
        ++row;
    return std::unique_ptr<MsgBase>(source.isFull ? (*row)->createFull() : (*row)->create());
}

// A handler that cancels the work at one of its reports (0: never), counts them and checks their bounds.
class EndAt
{
public:
    explicit EndAt(int report) :
        before(setProgressHandler([this, report](const Progress& progress) {
            EXPECT_TRUE(progress.total == 0 || progress.done <= progress.total);
            arranges |= progress.work == Work::arranging && progress.total == 0;
            return ++reports != report;
        }))
    {}
    ~EndAt() { setProgressHandler(before); }

    int reports = 0;
    bool arranges = false; // steps that aren't counted

private:
    const ProgressHandler before;
};

TEST(Cancelling, LeavesTheImporterEmptyAndAsItWas)
{
    setenv("SOURCE_DATE_EPOCH", "0", 1);
    const TempDir folder;
    for (const Source& source : kSources) {
        const CString file = folder.write(CString("source.") + source.importer, source.text);
        const CString other = folder.write("other", "<!ELEMENT other (line)>");
        CString document, again;
        const std::unique_ptr<MsgBase> whole = importerOf(source);
        int reports = 0;
        {
            const EndAt never(0);
            EXPECT_EQ(whole->parseFile(file, "\\b\\"), 1);
            reports = never.reports;
            EXPECT_EQ(never.arranges, CString("xml btd").find(source.importer) == CString::npos) << source.importer;
        }
        whole->getXML(document);
        EXPECT_GT(reports, 3);
        for (const int report : {1, 2, reports / 2, reports}) {
            SCOPED_TRACE(source.importer + (" " + std::to_string(report)) + " of " + std::to_string(reports));
            const std::unique_ptr<MsgBase> message = importerOf(source);
            {
                const EndAt there(report);
                EXPECT_THROW(message->parseFile(file, "\\b\\"), Cancelled);
            }
            EXPECT_EQ(message->beginEnum(), 0);
            if (CString("dtd") == source.importer) { // its main type is the first that it has ever read
                message->parseFile(other, "\\b\\");
                EXPECT_EQ(message->queryMainTypeName(), "other");
                continue;
            }
            EXPECT_EQ(message->parseFile(file, "\\b\\"), 1);
            message->getXML(again);
            EXPECT_TRUE(again == document);
        }
    }
}

TEST(Cancelling, LeavesAnOldFileAsItWas)
{
    const TempDir folder;
    const std::unique_ptr<MsgBase> message = importerOf(kSources[0]);
    message->parseFile(folder.write("x", kSources[0].text), "\\b\\");
    const CString target = folder.write("out/types.xml", "old");
    try {
        const EndAt third(3);
        AtomicFile file(target);
        message->writeXML([&file](std::string_view text) { file.write(text); });
        ADD_FAILURE() << "it went on";
    } catch (const Cancelled&) {
    }
    EXPECT_EQ(TempDir::read(target), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path("out")), {}), 1);
}

} // namespace
