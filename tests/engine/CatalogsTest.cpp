#include "Import/Full/Catalogs.h"

#include "Import/Dtd/DTDFullMsg.h"
#include "Import/Schema/Full/SchemaFullMsg.h"
#include "support/FullTypes.h"
#include "support/Importing.h"

#include <algorithm>

namespace {

CString catalog(const CString& entries, const CString& attributes = "")
{
    return "<!DOCTYPE catalog PUBLIC '-//OASIS//DTD Entity Resolution XML Catalog V1.0//EN' 'http://x/catalog.dtd'>"
           "<catalog xmlns='urn:oasis:names:tc:entity:xmlns:xml:catalog' " +
           attributes + ">" + entries + "</catalog>";
}

struct Row
{
    const char* name;
    CString entries;
    CString publicId, systemId, uri;
    CString path; // in the catalogue's folder; "none" without an entry, "remote" if it isn't a local file
    CString attributes = "";
};

const Row kRows[] = {
    {"System", "<system systemId='s' uri='a/b.xsd'/>", "", "s", "", "a/b.xsd"},
    {"SystemGoesBeforePublic", "<public publicId='p' uri='x'/><system systemId='s' uri='y'/>", "p", "s", "", "y"},
    {"Public", "<public publicId='-//A//B  C' uri='x'/>", "-//A//B C", "", "", "x"},
    {"WhiteSpaceOfAPublicIdentifier", "<public publicId='-//A//B C' uri='x'/>", "\n-//A//B\n  C ", "", "", "x"},
    {"PublicBesideAnUnknownSystem", "<public publicId='p' uri='x'/>", "p", "s", "", "x"},
    {"AUrnAsASystemIdentifier", "<public publicId='-//A//B C' uri='x'/>", "", "urn:publicid:-:A:B+C", "", "x"},
    {"AUrnAsAUri", "<public publicId='A::B' uri='x'/>", "", "", "urn:publicid:A;B", "x"},
    {"AUrnInAnEntry", "<public publicId='urn:publicid:-:A:B%2Fc' uri='x'/>", "-//A//B/c", "s", "", "x"},
    {"PreferSystem", "<public publicId='p' uri='x'/>", "p", "s", "", "none", "prefer='system'"},
    {"PreferSystemWithoutOne", "<public publicId='p' uri='x'/>", "p", "", "", "x", "prefer='system'"},
    {"AGroupPrefers", "<group prefer='public'><public publicId='p' uri='x'/></group>", "p", "s", "", "x",
     "prefer='system'"},
    {"TheFirstHolds", "<system systemId='s' uri='1'/><system systemId='s' uri='2'/>", "", "s", "", "1"},
    {"TheLongestPrefix",
     "<rewriteSystem systemIdStartString='http://a/' rewritePrefix='a/'/><rewriteSystem "
     "systemIdStartString='http://a/b/' rewritePrefix='b/'/>",
     "", "http://a/b/c.xsd", "", "b/c.xsd"},
    {"TheLongestSuffix", "<systemSuffix systemIdSuffix='c' uri='1'/><systemSuffix systemIdSuffix='b/c' uri='2'/>", "",
     "http://a/b/c", "", "2"},
    {"Uri", "<uri name='urn:x' uri='x.xsd'/>", "", "", "urn:x", "x.xsd"},
    {"UriPrefixAndSuffix",
     "<uriSuffix uriSuffix='c' uri='1'/><rewriteURI uriStartString='http://a/' rewritePrefix='a/'/>", "", "",
     "http://a/c", "a/c"},
    {"AUriAsASystemIdentifier", "<system systemId='http://a/c' uri='c'/>", "", "", "http://a/c", "c"},
    {"Base", "<group xml:base='d/x'><system xml:base='e/' systemId='s' uri='f'/></group>", "", "s", "", "d/e/f"},
    {"RemoteBase", "<system systemId='s' uri='f'/>", "", "s", "", "remote", "xml:base='http://a/'"},
    {"ABaseInARemoteOne", "<group xml:base='d/'><system systemId='s' uri='f'/></group>", "", "s", "", "remote",
     "xml:base='http://a/'"},
    {"RemoteTarget", "<system systemId='s' uri='http://a/f'/>", "", "s", "", "remote"},
    {"OtherNamespacesAreNotLookedAt", "<system xmlns='urn:o' systemId='s' uri='f'/>", "", "s", "", "none"},
    {"Next", "<nextCatalog catalog='next.xml'/><nextCatalog catalog='c.xml'/>", "", "n", "", "sub/n"},
    {"TheNextInTheirOrder", "<nextCatalog catalog='next.xml'/><nextCatalog catalog='last.xml'/>", "", "n", "", "sub/n"},
    {"OwnEntriesGoBeforeTheNext", "<nextCatalog catalog='next.xml'/><system systemId='n' uri='own'/>", "", "n", "",
     "own"},
    {"ADelegateAloneIsAsked",
     "<delegateSystem systemIdStartString='m' catalog='next.xml'/><public publicId='p' uri='x'/>", "p", "m", "",
     "none"},
    {"ADelegate", "<delegateSystem systemIdStartString='n' catalog='next.xml'/>", "", "n", "", "sub/n"},
    {"ADelegateOfPublicIdentifiers", "<delegatePublic publicIdStartString='-//' catalog='next.xml'/>", "-//N", "", "",
     "sub/p"},
    {"ADelegateOfPublicIdentifiersWithoutASystemIdentifier",
     "<delegatePublic publicIdStartString='-//' catalog='next.xml'/>", "-//N", "", "", "sub/p", "prefer='system'"},
    {"ADelegateOfPublicIdentifiersIsNotPreferred",
     "<delegatePublic publicIdStartString='-//' catalog='next.xml'/><nextCatalog catalog='next.xml'/>", "-//N", "n", "",
     "sub/n", "prefer='system'"},
    {"TheFirstThatIsPreferred",
     "<public publicId='p' uri='1'/><group prefer='public'><public publicId='p' uri='2'/></group>", "p", "s", "", "2",
     "prefer='system'"},
    {"ADelegateIgnoresTheOtherIdentifier", "<delegatePublic publicIdStartString='-//' catalog='next.xml'/>", "-//N",
     "n", "", "sub/p"},
    {"EachDelegateIsAskedWithItsNext",
     "<delegateSystem systemIdStartString='m' catalog='next.xml'/><delegateSystem systemIdStartString='m/' "
     "catalog='other.xml'/>",
     "", "m/x", "", "next"},
};

class CatalogRow : public testing::TestWithParam<Row>
{};

TEST_P(CatalogRow, FindsAPath)
{
    const Row& row = GetParam();
    const TempDir folder;
    folder.write("next.xml", catalog("<system systemId='n' uri='n'/><public publicId='-//N' uri='p'/>"
                                     "<nextCatalog xml:base='../' catalog='last.xml'/>",
                                     "xml:base='sub/'"));
    folder.write("last.xml", catalog("<system systemId='n' uri='last'/><system systemId='m/x' uri='next'/>"));
    folder.write("other.xml", catalog("<delegateSystem systemIdStartString='m/x/' catalog='c.xml'/>"));
    SourceReport report;
    Catalogs catalogs(report);
    catalogs.load(folder.write("c.xml", catalog(row.entries, row.attributes)));
    const std::optional<CString> found =
        row.uri.empty() ? catalogs.findExternal(row.publicId, row.systemId) : catalogs.findUri(row.uri);
    const CString own = std::filesystem::canonical(folder.path()).string() + "/";
    const CString shown = !found           ? "none"
                          : found->empty() ? "remote"
                                           : found->substr(std::min(own.size(), found->size()));
    EXPECT_EQ(shown, row.path);
    EXPECT_EQ(report.queryTotal(SourceReport::loss), 0);
}

INSTANTIATE_TEST_SUITE_P(Rows, CatalogRow, testing::ValuesIn(kRows), [](const auto& row) { return row.param.name; });

TEST(Catalogs, TellsWhatItCannotRead)
{
    const TempDir folder;
    SourceReport report;
    Catalogs catalogs(report);
    folder.write("bad.xml", "<catalog");
    folder.write("other.xml", "<catalog/>");
    EXPECT_THROW(catalogs.load(folder.path("none.xml")), SourceRefusal);
    EXPECT_THROW(catalogs.load(folder.path("bad.xml")), SourceRefusal);
    EXPECT_THROW(catalogs.load(folder.path("other.xml")), SourceRefusal);
    Catalogs others(report);
    others.load(folder.write("c.xml", catalog("<nextCatalog catalog='none.xml'/><nextCatalog catalog='bad.xml'/>"
                                              "<nextCatalog catalog='other.xml'/><nextCatalog/>"
                                              "<nextCatalog catalog='http://a/c.xml'/><system uri='x'/>")));
    EXPECT_EQ(report.lossesInWords(), "6 losses: 2 declarations not understood, 1 document not found, 1 document not "
                                      "readable, 1 document not well-formed, 1 document not local");
    EXPECT_EQ(others.findExternal("", "s"), std::nullopt);
}

class CatalogOfSchemas : public Importing<SchemaFullMessage>
{};

TEST_F(CatalogOfSchemas, LeadsToLocationsAndNamespaces)
{
    const auto part = [](const CString& space, const CString& field) {
        return "<schema xmlns='http://www.w3.org/2001/XMLSchema' targetNamespace='" + space +
               "'><complexType name='T'><sequence><element name='" + field + "'/></sequence></complexType></schema>";
    };
    folder.write("d/a", part("urn:a", "a"));
    folder.write("d/b", part("urn:b", "b"));
    folder.write("d/c", part("urn:c", "c"));
    message.setCatalogs({folder.write("c.xml", catalog("<uri name='http://x/a.xsd' uri='d/a'/><uri name='urn:b' "
                                                       "uri='d/b'/><public publicId='urn:c' uri='d/none'/>"))});
    const CString source = folder.write(
        "s/x.xsd", "<schema xmlns='http://www.w3.org/2001/XMLSchema' xmlns:a='urn:a' xmlns:b='urn:b' xmlns:c='urn:c'>"
                   "<import namespace='urn:a' schemaLocation='http://x/a.xsd'/><import namespace='urn:b'/>"
                   "<import namespace='urn:c' schemaLocation='../d/c'/><element name='r'><complexType><sequence>"
                   "<element name='a' type='a:T'/><element name='b' type='b:T'/><element name='c' type='c:T'/>"
                   "</sequence></complexType></element></schema>");
    EXPECT_EQ(message.parseFile(source, "\\b\\"), 1);
    EXPECT_EQ(fullTypesOf(message), "T_3(c:String) T_2(b:String) T(a:String) r(a:T b:T_2 c:T_3)");
    EXPECT_EQ(message.queryReport().queryTotal(SourceReport::loss), 0);
}

class CatalogOfModules : public Importing<DTDFullMessage>
{};

TEST_F(CatalogOfModules, LeadsToModules)
{
    folder.write("d/m", "<!ENTITY % n SYSTEM 'n'>%n;");
    folder.write("d/n", "<!ELEMENT r (s)>");
    folder.write("d/s", "<!ELEMENT s (t)>");
    message.setCatalogs({folder.write(
        "c.xml", catalog("<public publicId='-//M' uri='d/m'/><system systemId='http://x/s' uri='d/s'/>"))});
    EXPECT_EQ(message.parseFile(folder.write("x/x.dtd", "<!ENTITY % m PUBLIC \"-//M\">%m;<!ENTITY % s PUBLIC '' "
                                                        "'http://x/s'>%s;<!ELEMENT t EMPTY>"),
                                "\\b\\"),
              1);
    EXPECT_EQ(fullTypesOf(message), "s(t:String) r(s:s)");
    EXPECT_EQ(message.queryReport().queryTotal(SourceReport::loss), 0);
}

} // namespace
