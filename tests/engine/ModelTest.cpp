#include "Import/MsgBase.h"
#include "Model/BrokerType.h"
#include "Model/ClimbShortcuts.h"
#include "support/Importing.h"

#include <algorithm>
#include <cstdlib>
#include <random>

namespace {

// An importer whose source is the declarations of the test.
class Declared final : public MsgBase
{
public:
    using Declare = std::function<void(Declared&)>;

    using MsgBase::findUsage;
    using MsgBase::model;
    using MsgBase::onAfterParse;
    using MsgBase::orderList;

    Declared(Declare steps, int mergeByName = 1) : MsgBase(mergeByName), declare(std::move(steps))
    {
        parseData({}, {});
    }

    int parse(const CString&, const CString&, const CString&) override
    {
        declare(*this);
        return 1;
    }
    CString queryMainTypeName() const override { return "Main"; }
    MsgUIDescriptor* queryDescriptor() const override { return nullptr; }

    Element* add(const CString& key, const CString& name, Element* parent = nullptr,
                 Element::ElementTypes type = Element::typeString)
    {
        return addElement(key, "\\f", name, "d", type, parent);
    }

private:
    Declare declare;
};

CString typesOfDeclared(const Declared::Declare& declare, int mergeByName = 1)
{
    Declared message(declare, mergeByName);
    return typesOf(message);
}

TEST(Model, RepeatedUsageBecomesATable)
{
    Declared message([](Declared& m) {
        Element* order = m.add("order", "order");
        m.add("order.id", "id", order, Element::typeNumber);
        m.add("order.item", "item", order);
        m.add("order.item", "item", order);
        EXPECT_EQ(m.findUsage("order.item")->queryInstances(), 2u);
        EXPECT_TRUE(!m.findUsage("item") && !m.findUsage(""));
        m.add("item.sku", "sku", m.add("item", "item"));
        m.addAttribute("order.a", "\\f\\", "a", "d", Element::typeString, order);
        m.addAttribute("order.a", "\\f\\", "a", "d", Element::typeString, order);
    });
    EXPECT_EQ(typesOf(message), "item:R(sku:S) t_item:t(item:R) order:R(id:N t_item:t order_a:S)");
    message.beginEnum();
    message.enumNext();
    EXPECT_EQ(message.enumNext()->queryDescription(), "t_item (Automatically created)");
    EXPECT_EQ(message.beginEnum(), 3);
}

// A description as long as the generated one is kept, too.
TEST(Model, DescriptionsLikeGeneratedOnesAreKept)
{
    for (const CString description : {"r_a (Automatically created)", "r_a (Automatically Created)"}) {
        Declared message([&](Declared& m) {
            m.addAttribute("r.a", "\\f\\", "a", description, Element::typeString, m.add("r", "r"));
        });
        CString document;
        message.getXML(document);
        EXPECT_NE(document.find("DESCRIPTION=\"" + description), CString::npos) << document;
    }
}

// Records are declared again, hold each other, and have names that give two declarations the same key.
TEST(Model, FieldsAreToldApartByNamesAsByKeys)
{
    for (unsigned seed = 0; seed < 500; ++seed) {
        const auto declare = [seed](Declared& m, bool byNames) {
            std::minstd_rand random(seed + 1);
            const std::vector<CString> names{"a", "b", "c", "d", seed % 3 == 0 ? "a.b" : "e", seed % 5 == 0 ? "" : "f"};
            const auto draw = [&] { return names[random() % names.size()]; };
            for (unsigned records = 1 + random() % 8; records > 0; --records) {
                const CString name = draw();
                Element* const record = (byNames ? m.model.addRecord("\\f\\", name)
                                                 : m.model.addElement(name, "\\f\\", name, Element::typeRow, nullptr))
                                            .element;
                for (unsigned fields = random() % 6; fields > 0; --fields) {
                    const CString field = draw();
                    if (byNames)
                        m.model.addField(record, m.model.queryNames().intern(field), Element::typeString);
                    else
                        m.model.addElement(name + "." + field, "\\f\\", field, Element::typeString, record);
                }
            }
        };
        for (const int merges : {0, 1})
            EXPECT_EQ(typesOfDeclared([&](Declared& m) { declare(m, true); }, merges),
                      typesOfDeclared([&](Declared& m) { declare(m, false); }, merges))
                << seed;
    }
}

TEST(Model, PrimitivesThatRepeatNameTheirWord)
{
    for (const auto& [type, types] : {std::pair(Element::typeString, "t_f:t=String(f:S=String) r:R(t_f:t=String)"),
                                      std::pair(Element::typeNumber, "t_f:t=Number(f:N=Number) r:R(t_f:t=Number)"),
                                      std::pair(Element::typeDate, "t_f:t=Time(f:T=Time) r:R(t_f:t=Time)"),
                                      std::pair(Element::typeOther, "t_f:t(f:O) r:R(t_f:t)")}) {
        const auto declare = [kind = type](Declared& m) {
            Element* row = m.add("r", "r");
            m.add("r.f", "f", row, kind);
            m.add("r.f", "f", row, kind);
        };
        EXPECT_EQ(typesOfDeclared(declare), types);
    }
}

TEST(Model, WithoutMergingEachCallMakesAnElement)
{
    const auto declare = [](Declared& m) {
        Element* a = m.add("a", "a");
        for (const auto& [key, name] :
             {std::pair("a.x", "x"), std::pair("a.y", "x"), std::pair("", ""), std::pair("", "")})
            m.add(key, name, a);
    };
    EXPECT_EQ(typesOfDeclared(declare, 0), "a:R(x:S x:S :S :S)");
    EXPECT_EQ(typesOfDeclared(declare, 1), "a:R(x:S :S :S)") << "the nameless never merge";
}

TEST(Model, ReferenceToAListedTypePutsATypeAtTheEnd)
{
    EXPECT_EQ(typesOfDeclared([](Declared& m) {
                  m.add("f", "x", m.add("Party", "Party"));
                  Element* order = m.add("Order", "Order");
                  m.add("g", "customer", order, Element::typeOther)->setKnownType("\\f\\Party");
                  m.add("h", "y", m.add("Last", "Last"));
              }),
              "Last:R(y:S) Party:R(x:S) Order:R(customer:O=\\f\\Party)");
}

// The children of each element by number. Element 0 is declared first.
using Web = std::vector<std::vector<int>>;

CString orderOf(const Web& web)
{
    return typesOfDeclared([&web](Declared& m) {
        const auto name = [](std::size_t i) { return CString(1, static_cast<char>('a' + i)); };
        for (std::size_t i = 0; i < web.size(); ++i) {
            Element* parent = m.add(name(i), name(i), nullptr, Element::typeRow);
            for (const int child : web[i])
                m.add(name(i) + name(child), name(child), parent, Element::typeRow);
        }
    });
}

TEST(Model, OrdersWebsAndCycles)
{
    EXPECT_EQ(orderOf({{1}, {2}, {3}}), "d:R() c:R(d:R) b:R(c:R) a:R(b:R)");
    EXPECT_EQ(orderOf({{1, 2}, {3}, {3}}), "d:R() c:R(d:R) b:R(d:R) a:R(b:R c:R)");
    EXPECT_EQ(orderOf({{0}}), "a:R(a:R)");
    // The climb from a: its parent is c, whose parent is b, whose parent is a, where the climb started.
    EXPECT_EQ(orderOf({{1}, {2}, {0}}), "a:R(b:R) c:R(a:R) b:R(c:R)");
    EXPECT_EQ(orderOf({{1}, {0, 2}, {1}}), "b:R(a:R c:R) a:R(b:R) c:R(b:R)");
}

TEST(Model, OrdersLongChainsAndGreatCycles)
{
    constexpr int count = 100'000;
    const auto chain = [](int last) {
        return [last](Declared& m) {
            for (int i = count - 1; i >= 0; --i) {
                const CString name = std::to_string(i), child = std::to_string(i + 1 < count ? i + 1 : last);
                m.add(name + "." + child, child, m.add(name, name, nullptr, Element::typeRow), Element::typeRow);
            }
        };
    };
    Declared open(chain(count)), closed(chain(0));
    EXPECT_EQ(open.beginEnum(), count + 1);
    EXPECT_EQ(open.enumNext()->queryName(), std::to_string(count));
    EXPECT_EQ(closed.beginEnum(), count);
}

std::vector<CString> namesOf(MsgBase& message)
{
    std::vector<CString> names;
    message.beginEnum();
    while (const Element* type = message.enumNext())
        names.push_back(type->queryName());
    return names;
}

TEST(Model, OrdersAsTheClimbsSayAtAnySize)
{
    // e1 holds x2, x3 and so on; ei holds xi and e(i-1). Each descent climbs through all waiting elements.
    constexpr int count = 10'000;
    Declared message([](Declared& m) {
        const auto holds = [&m](const CString& parent, const CString& child) {
            m.add(parent + "." + child, child, m.add("", parent, nullptr, Element::typeRow), Element::typeRow);
        };
        for (int i = 2; i <= count; ++i)
            holds("e1", "x" + std::to_string(i));
        for (int i = 2; i <= count; ++i) {
            holds("e" + std::to_string(i), "x" + std::to_string(i));
            holds("e" + std::to_string(i), "e" + std::to_string(i - 1));
        }
        for (int i = 2; i <= count; ++i)
            holds("x" + std::to_string(i), "v");
    });
    std::vector<CString> expected{"v"};
    for (int i = count; i >= 2; --i)
        expected.push_back("x" + std::to_string(i));
    for (int i = 1; i <= count; ++i)
        expected.push_back("e" + std::to_string(i));
    EXPECT_EQ(namesOf(message), expected);
}

TEST(Model, PutsComponentsFirstOutsideOfAGreatCycle)
{
    // A complete graph, too large for the climb budget; each element has a user outside the cycle.
    constexpr int count = 1000;
    Declared message([](Declared& m) {
        std::vector<Element*> all;
        for (int i = 0; i < count; ++i)
            all.push_back(m.add(std::to_string(i), std::to_string(i), nullptr, Element::typeRow));
        for (Element* parent : all)
            for (Element* child : all)
                m.add(parent->queryName() + "." + child->queryName(), child->queryName(), parent, Element::typeRow);
        for (Element* child : all) {
            const CString user = "user" + child->queryName();
            m.add(user + ".", child->queryName(), m.add(user, user, nullptr, Element::typeRow), Element::typeRow);
        }
    });
    const std::vector<CString> names = namesOf(message);
    ASSERT_EQ(names.size(), 2u * count);
    for (auto name = names.begin(); name != names.end(); ++name) {
        if (!name->starts_with("user"))
            continue;
        EXPECT_NE(std::find(names.begin(), name, name->substr(4)), name) << *name;
    }
}

// A chain of parents in which every second element is in a cycle with one beside the chain.
TEST(Model, ShortcutsLeadThroughCyclesOnceTheseArePassed)
{
    constexpr LinkGraph::Index count = 3000;
    std::vector<std::unique_ptr<Element>> all;
    std::vector<Element*> elements;
    for (LinkGraph::Index i = 0; i <= count; ++i) {
        elements.push_back(all.emplace_back(std::make_unique<Element>("", "", "", Element::typeRow, nullptr)).get());
        elements[i]->setNumber(i);
    }
    for (LinkGraph::Index i = 0; i < count; i += 3)
        for (const auto& [child, parent] : {std::pair(i, i + 1), {i + 1, i + 2}, {i + 2, i + 1}, {i + 1, i + 3}})
            elements[child]->addParent(elements[parent]);
    LinkGraph graph(elements);
    ClimbShortcuts shortcuts(graph);
    for (LinkGraph::Index i = 0; i < count; i += 3)
        EXPECT_EQ(shortcuts.topOf(i), i + 1);
    shortcuts.passCycles();
    EXPECT_EQ(shortcuts.topOf(0), count);
}

TEST(Model, TakesLinksThatAnImporterMade)
{
    Declared message([](Declared& m) {
        Element *a = m.add("a", "a", nullptr, Element::typeRow), *b = m.add("b", "b", nullptr, Element::typeRow);
        a->addChild(b); // but b has no link back, so it would be placed last
        m.add("a.b", "b", a);
        Element* c = m.add("c", "c", nullptr, Element::typeRow);
        c->addParent(b);
        m.add("b.c", "c", b);
        EXPECT_EQ(b->queryParents().size() + c->queryParents().size() + b->queryChildren().size(), 3u);
        m.orderList(c);
    });
    EXPECT_EQ(typesOf(message), "c:R() b:R(c:R) a:R(b:R)");
    message.onAfterParse();
    EXPECT_EQ(typesOf(message), "c:R() b:R(c:R) a:R(b:R)") << "a second pass lists all again";
}

TEST(Element, KeepsItsRules)
{
    Element row("", "r", "", Element::typeString, nullptr), child("\\x", "c", "d", Element::typeOther, &row);
    EXPECT_EQ(row.queryPath() + "|" + child.queryPath(), "\\|\\x\\");
    EXPECT_EQ(row.addChild(&child), 1);
    EXPECT_EQ(row.addChild(&child), 0);
    EXPECT_EQ(row.queryType(), Element::typeRow);
    child.addChild(&row);
    child.addParent(&row);
    child.addParent(nullptr);
    EXPECT_EQ(child.queryType(), Element::typeOther);
    EXPECT_EQ(child.queryParents().size(), 1u);

    child.setSize("7");
    child.setKnownType("k");
    Element copy(child);
    EXPECT_EQ(copy.queryKnownType() + copy.queryDescription() + copy.querySize(), "kd");
    EXPECT_EQ(copy.queryChildren().size() + copy.queryParents().size(), 0u);
}

TEST(Element, ListsOfAnyLengthHoldEachOnce)
{
    std::vector<std::unique_ptr<Element>> many;
    Element row("", "r", "", Element::typeRow, nullptr), table("", "t", "", Element::typeTable, nullptr);
    for (int i = 0; i < 1000; ++i)
        many.push_back(std::make_unique<Element>("", "e", "", Element::typeString, nullptr));
    for (const auto& child : many)
        EXPECT_EQ(row.addChild(child.get()), 1);
    row.toTable(many[500].get(), &table);
    row.toTable(many[500].get(), &row); // no longer a child
    EXPECT_EQ(row.queryChildren()[500], &table);
    EXPECT_EQ(row.addChild(&table) + row.addChild(many[7].get()), 0);
    EXPECT_EQ(row.addChild(many[500].get()), 1);
}

TEST(Documents, EachKindOfType)
{
    Element a("\\g\\", "a", "first", Element::typeOther, nullptr), b("", "b", "", Element::typeEnum, nullptr);
    a.setKnownType("\\x\\<&\"\t\x01\xF6");
    const CString described = "NAME=\"a\" DESCRIPTION=\"first\"";
    const struct
    {
        Element::ElementTypes type;
        std::vector<Element*> children;
        CString content;
    } rows[] = {
        {Element::typeEnum, {}, "<ENUM/>"},
        {Element::typeRow, {&b}, "<ROW/>"},
        // Not UTF-8, so read as Windows-1252. XML has no control characters.
        {Element::typeRow,
         {&a},
         "<ROW><FIELD " + described + " TYPE=\"\\x\\&lt;&amp;&quot;&#9;\xEF\xBF\xBD\xC3\xB6\"/></ROW>"},
        {Element::typeEnum, {&a, &b}, "<ENUM><CONSTANT " + described + "/><CONSTANT NAME=\"b\"/></ENUM>"},
        {Element::typeArray, {}, "<ARRAY SIZE=\"5\"><COMPONENT TYPE=\"\\f\\T\"/></ARRAY>"},
        {Element::typeTable, {}, "<TABLE><COMPONENT TYPE=\"Number\"/></TABLE>"},
        {Element::typeString, {}, ""},
    };
    for (const auto& [type, children, content] : rows) {
        Element element("\\f", "T", "", type, nullptr);
        element.setKnownType(type == Element::typeTable ? "Number" : "");
        for (Element* child : children)
            element.addChild(child);
        CString text;
        element.asXML(text);
        EXPECT_EQ(text, "<BROKERTYPEDESCRIPTION NAME=\"\\f\\T\"" +
                            (content.empty() ? "/>" : ">" + content + "</BROKERTYPEDESCRIPTION>"));
    }
}

TEST(Documents, BuilderTakesOnlyWhatItsContentTakes)
{
    XmlText text;
    BrokerTypeDescription type("T", "d", "\\f", text);
    EXPECT_EQ(type.addField("a", "", "String") + type.addConstant("a", ""), 0);
    EXPECT_EQ(type.addEnum(), 1);
    EXPECT_EQ(type.addRow() + type.addEnum() + type.addArray("1", "") + type.addTable("") + type.addField("a", "", ""),
              0);
    EXPECT_EQ(type.addConstant("", ""), 1);
    CString document;
    type.queryXML(document);
    EXPECT_THAT(document, testing::HasSubstr(" DESCRIPTION=\"d\"><ENUM><CONSTANT NAME=\"\"/></ENUM></"));
}

TEST(Documents, MessageDocumentIsStampedWithTheSourceDate)
{
    ::setenv("SOURCE_DATE_EPOCH", "1704067199", 1);
    CString document;
    Declared([](Declared&) {}).getXML(document);
    ::unsetenv("SOURCE_DATE_EPOCH");
    EXPECT_EQ(document, "<?xml version=\"1.0\" ?>\r\n<!-- Generated by QEL.EXE at 2023-12-31T23:59:59 -->\r\n"
                        "<Main>\r\n</Main>");
}

TEST(Documents, TextsMadeFitForXml)
{
    const char* const rows[][2] = {
        {"gr\xC3\xB6\xC3\x9F!", "gr\xC3\xB6\xC3\x9F!"},
        {"\x80\x99\x81", "\xE2\x82\xAC\xE2\x84\xA2\xC2\x81"},
        {"\xC3\xB6\xF6", "\xC3\x83\xC2\xB6\xC3\xB6"}, // the whole value, not a single byte
        {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xE2\x82\xAC"},
        {"\xEF\xBF\xBF\v", "\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xF0\x9F\x99\x82 and more", "\xF0\x9F\x99\x82 and more"},
        {"\xC0\xAF", "\xC3\x80\xC2\xAF"},
        {"\xF0\x80\x80\xAF", "\u00F0\u20AC\u20AC\u00AF"},
    };
    for (const auto& [bytes, text] : rows) {
        EXPECT_EQ(toXmlText(bytes), text);
        EXPECT_EQ(isXmlText(bytes), CString(bytes) == text);
    }
    for (const char* text : {"<", "12345678&", "1234567\"890", "\x7F>", "\x1F", "abcdefgh\x80ijklmnop"})
        EXPECT_FALSE(isPlainXmlText(text)) << text;
    for (const char* text : {"", "a", "12345678", "123456789", "\\sys\\a_b.c-d (e)'~ "})
        EXPECT_TRUE(isPlainXmlText(text)) << text;
    for (const auto& [text, name] : {std::pair("", "_"),
                                     {"a b", "a_b"},
                                     {"1a", "_a"},
                                     {"-", "_"},
                                     {"\xE4\u00D7", "\u00E4\u00C3_"},
                                     {":a.1\u00B7", ":a.1\u00B7"},
                                     {"\u00B7", "_"},
                                     {"p:a", "p:a"},
                                     {"a:.b", "a_.b"},
                                     {"a::b:", "a_:b_"}})
        EXPECT_EQ(toXmlName(text), name);
    for (const auto& [text, shown] : {std::pair("a\x1B[1m\nb\x7F", "a [1m b "),
                                      {"\u00E4\xC2\x9Bm\u2028\u202Ex", "\u00E4 m  x"},
                                      {"\x9B\xE4", "\u203A\u00E4"}})
        EXPECT_EQ(shownText(text), shown);
}

} // namespace
