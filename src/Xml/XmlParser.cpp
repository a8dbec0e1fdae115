#include "Xml/XmlParser.h"

#include "Base/Progress.h"
#include "Base/Utf8.h"
#include "Files/FileMessage.h"
#include "Xml/XmlLimits.h"
#include "Xml/XmlSource.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <memory>

namespace {

constexpr int kPointersPerAttribute = XmlAttributes::kRowSize;

const char* text(const xmlChar* characters)
{
    return reinterpret_cast<const char*>(characters);
}

std::string_view view(const xmlChar* characters)
{
    return characters ? text(characters) : std::string_view();
}

XmlPlace placeAt(int line, int column)
{
    return {static_cast<std::uint32_t>(std::max(line, 0)), static_cast<std::uint32_t>(std::max(column, 0))};
}

// Opens nothing: every external entity, on disk or on the network, is empty. If loading failed instead, libxml2 would
// forget that undeclared entities may be declared there. There is one loader for the process.
xmlParserInputPtr emptyExternalEntity(const char*, const char*, xmlParserCtxtPtr context)
{
    return xmlNewStringInputStream(context, BAD_CAST "");
}

void setUpLibrary()
{
    static const bool once = [] {
        xmlInitParser();
        xmlSetExternalEntityLoader(emptyExternalEntity);
        return true;
    }();
    static_cast<void>(once);
}

// Sets libxml2's error handler in its scope. That of a parser context would miss errors of the decoder.
class ErrorsTo
{
public:
    ErrorsTo(void* data, xmlStructuredErrorFunc handler) :
        before(xmlStructuredError), beforeData(xmlStructuredErrorContext)
    {
        xmlSetStructuredErrorFunc(data, handler);
    }
    ~ErrorsTo() { xmlSetStructuredErrorFunc(beforeData, before); }
    ErrorsTo(const ErrorsTo&) = delete;
    ErrorsTo& operator=(const ErrorsTo&) = delete;

private:
    xmlStructuredErrorFunc before;
    void* beforeData;
};

// One run of the parser. libxml2 passes the current context to its callbacks (an entity's content has a context of its
// own); its _private member leads to this object.
class Parse final : private XmlLocator
{
public:
    Parse(XmlSource& document, XmlHandler& receiver) : source(document), handler(receiver), limits(document) {}

    std::optional<IXMLDOMParseError> run(int firstLine = 0);

private:
    struct FreeContext
    {
        void operator()(xmlParserCtxtPtr context) const
        {
            // The document contains only the declared entities, because no callback adds nodes to it.
            xmlFreeDoc(context->myDoc);
            xmlFreeParserCtxt(context);
        }
    };

    static Parse& of(void* context) { return *static_cast<Parse*>(static_cast<xmlParserCtxtPtr>(context)->_private); }
    static xmlSAXHandler callbacks(bool withText);

    static int onRead(void* run, char* out, int room);
    static void onError(void* run, xmlErrorPtr error);
    static void onEntityDeclaration(void* context, const xmlChar* name, int type, const xmlChar* publicId,
                                    const xmlChar* systemId, xmlChar* content);
    static xmlEntityPtr onEntity(void* context, const xmlChar* name);
    static xmlEntityPtr onParameterEntity(void* context, const xmlChar* name);
    static void onStartElement(void* context, const xmlChar* local, const xmlChar* prefix, const xmlChar* uri,
                               int namespaces, const xmlChar** declarations, int attributes, int defaulted,
                               const xmlChar** rows);
    static void onEndElement(void* context, const xmlChar* local, const xmlChar* prefix, const xmlChar* uri);
    template <auto Call>
    static void onText(void* context, const xmlChar* characters, int length);
    static void onComment(void* context, const xmlChar* characters);
    static void onInstruction(void* context, const xmlChar* target, const xmlChar* data);

    template <class Call>
    void guarded(void* context, Call call);
    xmlEntityPtr counted(void* context, xmlEntityPtr entity);
    bool mayHoldLongNames(const xmlParserCtxt& context);
    void checkName(const xmlChar* local, const xmlChar* prefix);
    void checkTag(int attributes);
    bool reportStep();
    bool hasRest() const;
    int line() const { return parser->inputTab[0]->line; } // of the document, even inside an entity
    XmlPlace tagStart() const override;
    XmlPlace referenceStart(const void* context, std::string_view name) const;
    void fail(std::string_view reason);
    void hold(const char* exceeded)
    {
        if (exceeded)
            fail(exceeded);
    }
    static void stop(void* context);

    XmlSource& source;
    XmlHandler& handler;
    std::unique_ptr<xmlParserCtxt, FreeContext> parser;
    const void* tagContext = nullptr; // of the last start tag
    std::optional<IXMLDOMParseError> first;
    std::exception_ptr thrown; // by the handler
    bool outOfMemory = false;  // in libxml2
    XmlLimits limits;
    std::size_t depth = 0;
    std::size_t lastTagEnd = 0;
    bool inProlog = true;
    unsigned pieces = 0;
};

xmlSAXHandler Parse::callbacks(bool withText)
{
    xmlSAXHandler sax = {};
    sax.initialized = XML_SAX2_MAGIC;
    // libxml2's own callbacks store the declarations of entities. Default attributes need no callback.
    sax.startDocument = xmlSAX2StartDocument;
    sax.internalSubset = xmlSAX2InternalSubset;
    sax.unparsedEntityDecl = xmlSAX2UnparsedEntityDecl;
    sax.entityDecl = onEntityDeclaration;
    sax.getEntity = onEntity;
    sax.getParameterEntity = onParameterEntity;
    sax.startElementNs = onStartElement;
    sax.endElementNs = onEndElement;
    sax.comment = onComment;
    sax.processingInstruction = onInstruction;
    if (withText) {
        sax.characters = onText<&XmlHandler::text>;
        sax.cdataBlock = onText<&XmlHandler::cdata>;
    }
    sax.ignorableWhitespace = sax.characters; // else libxml2 guesses which blanks matter
    return sax;
}

std::optional<IXMLDOMParseError> Parse::run(int firstLine)
{
    setUpLibrary();
    const ErrorsTo here(this, onError);
    xmlSAXHandler sax = callbacks(handler.wantsText());
    parser.reset(xmlCreateIOParserCtxt(&sax, nullptr, onRead, nullptr, this, XML_CHAR_ENCODING_NONE));
    if (!parser)
        throw std::bad_alloc();
    parser->_private = this;
    // XML_PARSE_HUGE lifts the limits on the length of texts, values and names until the document declares an entity.
    xmlCtxtUseOptions(parser.get(), XML_PARSE_NONET | XML_PARSE_HUGE | (firstLine > 0 ? XML_PARSE_IGNORE_ENC : 0));
    if (firstLine > 0)
        parser->input->line = firstLine;
    // Set directly, because XML_PARSE_NOENT would also load external entities.
    parser->replaceEntities = 1;
    xmlParseDocument(parser.get());
    if (thrown)
        std::rethrow_exception(thrown);
    if (outOfMemory)
        throw std::bad_alloc();
    if (!first && hasRest())
        fail("Extra content at the end of the document");
    if (!first && !parser->wellFormed)
        fail("The document is not well-formed");
    return first;
}

// Returns whether bytes are left. libxml2 takes a NUL or bytes outside of the encoding for the end.
bool Parse::hasRest() const
{
    const xmlParserInput& input = *parser->input;
    return input.cur < input.end || (input.buf && input.buf->raw && xmlBufUse(input.buf->raw) > 0);
}

// Reads the next bytes and checks the bounds, also inside a start tag, whose attributes and namespaces libxml2 compares
// pairwise. maxatts, the room for attributes, doubles as they come. Reads nothing after an error.
int Parse::onRead(void* run, char* out, int room)
{
    Parse& self = *static_cast<Parse*>(run);
    if (self.parser)
        self.checkTag(self.parser->maxatts / kPointersPerAttribute / 2);
    if (self.first)
        return 0;
    const int size = self.source.read(out, room);
    if (!self.reportStep())
        return 0;
    if (self.inProlog && size > 0)
        self.hold(self.limits.addProlog({out, static_cast<std::size_t>(size)},
                                        self.parser ? self.parser->inputTab[0]->buf->encoder : nullptr));
    return size;
}

// Reports the progress, once in 16 pieces. Returns false if the parse was cancelled.
bool Parse::reportStep()
{
    constexpr unsigned piecesPerReport = 16;
    if (pieces++ % piecesPerReport != 0 || reportProgress({Work::reading, source.queryCount(), source.querySize()}))
        return true;
    thrown = std::make_exception_ptr(Cancelled());
    fail("The parse was cancelled");
    return false;
}

void Parse::onError(void* run, xmlErrorPtr error)
{
    Parse& self = *static_cast<Parse*>(run);
    self.outOfMemory |= error->code == XML_ERR_NO_MEMORY;
    if (!self.outOfMemory && error->level == XML_ERR_FATAL)
        self.fail(error->message ? error->message : "");
}

// Only the first failure counts.
void Parse::fail(std::string_view reason)
{
    if (first)
        return;
    first = IXMLDOMParseError{XmlLimits::reasonInWords(trimmed(reason))};
    if (parser && parser->inputNr > 0) {
        first->line = line();
        first->linepos = parser->inputTab[0]->col;
    }
}

// Stops one context. If it is that of an entity, the document's context ends at its next callback or read.
void Parse::stop(void* context)
{
    const auto current = static_cast<xmlParserCtxtPtr>(context);
    current->wellFormed = 0;
    xmlStopParser(current);
}

// Restores libxml2's limits on lengths and depth. Without entities, texts may have any length.
void Parse::onEntityDeclaration(void* context, const xmlChar* name, int type, const xmlChar* publicId,
                                const xmlChar* systemId, xmlChar* content)
{
    static_cast<xmlParserCtxtPtr>(context)->options &= ~XML_PARSE_HUGE;
    xmlSAX2EntityDecl(context, name, type, publicId, systemId, content);
}

xmlEntityPtr Parse::onEntity(void* context, const xmlChar* name)
{
    Parse& self = of(context);
    const xmlEntityPtr entity = xmlSAX2GetEntity(context, name);
    if (!entity || entity->etype == XML_EXTERNAL_GENERAL_PARSED_ENTITY)
        self.guarded(context,
                     [&] { self.handler.entityLeftOut(view(name), self.referenceStart(context, view(name))); });
    return self.counted(context, entity);
}

xmlEntityPtr Parse::onParameterEntity(void* context, const xmlChar* name)
{
    Parse& self = of(context);
    // libxml2 sets it after the first reference, and refuses the document if that one is to an undeclared entity. But a
    // document with such a reference is well-formed (XML 1.0, production [69]), and so are all later references.
    static_cast<xmlParserCtxtPtr>(context)->hasPErefs = 1;
    xmlEntityPtr entity = xmlSAX2GetParameterEntity(context, name);
    // A parameter entity can hold the values of an enumeration.
    if (entity && entity->content) {
        const std::string_view content = view(entity->content);
        self.hold(self.limits.addList(static_cast<std::size_t>(std::count(content.begin(), content.end(), '|'))));
    }
    return self.counted(context, entity);
}

// Counts the size of an entity at each reference, inside other entities too, which adds up to the whole expansion.
xmlEntityPtr Parse::counted(void* context, xmlEntityPtr entity)
{
    if (!entity || entity->etype == XML_INTERNAL_PREDEFINED_ENTITY)
        return entity;
    constexpr std::size_t perReference = 16; // bytes; an empty entity takes time, too
    hold(limits.addExpansion(perReference + static_cast<std::size_t>(entity->length)));
    if (!first)
        return entity;
    stop(context);
    return nullptr;
}

// Returns where the last start tag begins, or ends if an entity holds it. libxml2 only knows its end, but keeps all of
// it in memory.
XmlPlace Parse::tagStart() const
{
    const xmlParserInput& input = *parser->inputTab[0];
    const XmlPlace end = placeAt(input.line, input.col);
    if (tagContext != parser.get() || parser->inputNr != 1)
        return end;
    const std::string_view read(text(input.base), static_cast<std::size_t>(input.cur - input.base));
    return placeOfLastTag(read, end, input.consumed == 0);
}

// Returns where the last reference "&name;" begins.
XmlPlace Parse::referenceStart(const void* context, std::string_view name) const
{
    const xmlParserInput& input = *parser->inputTab[0];
    const bool isOfDocument = context == parser.get() && parser->inputNr == 1;
    const auto length = static_cast<int>(countCharacters(name)) + 2;
    return placeAt(input.line, isOfDocument ? input.col - length : input.col);
}

// Returns false if the start tag is too short for a long name, because measuring every name would cost too much.
bool Parse::mayHoldLongNames(const xmlParserCtxt& context)
{
    if (&context != parser.get()) // the text of an entity
        return true;
    const xmlParserInput& input = *context.input;
    const std::size_t end = input.consumed + static_cast<std::size_t>(input.cur - input.base);
    const std::size_t length = end - lastTagEnd;
    lastTagEnd = end;
    return length > kMaxXmlName;
}

void Parse::checkName(const xmlChar* local, const xmlChar* prefix)
{
    hold(XmlLimits::checkName(text(local), text(prefix)));
}

void Parse::checkTag(int attributes)
{
    hold(XmlLimits::checkTag(attributes, parser->nsNr / 2, xmlDictSize(parser->dict), depth));
}

// Calls the handler and keeps its exception for run(), because an exception must not unwind C code.
template <class Call>
void Parse::guarded(void* context, Call call)
{
    if (first)
        return stop(context);
    try {
        call();
    } catch (const XmlRefusal& refusal) {
        fail(refusal.reason);
        stop(context);
    } catch (...) {
        thrown = std::current_exception();
        fail("The handler failed");
        stop(context);
    }
}

void Parse::onStartElement(void* context, const xmlChar* local, const xmlChar* prefix, const xmlChar* uri,
                           int namespaces, const xmlChar** declarations, int attributes, int defaulted,
                           const xmlChar** rows)
{
    Parse& self = of(context);
    // Default attributes repeat text of the internal subset at each element, so they count as expansion.
    if (defaulted != 0) {
        std::size_t bytes = 0;
        for (int i = attributes - defaulted; i < attributes; ++i)
            bytes +=
                static_cast<std::size_t>(rows[i * kPointersPerAttribute + 4] - rows[i * kPointersPerAttribute + 3]) + 1;
        self.hold(self.limits.addExpansion(bytes));
    }
    self.inProlog = false;
    self.tagContext = context;
    self.checkTag(attributes);
    self.hold(self.limits.addList(static_cast<std::size_t>(attributes)));
    if (self.mayHoldLongNames(*static_cast<xmlParserCtxtPtr>(context)) || defaulted != 0) {
        self.checkName(local, prefix);
        for (int i = 0; i < attributes; ++i)
            self.checkName(rows[i * kPointersPerAttribute], rows[i * kPointersPerAttribute + 1]);
    }
    ++self.depth;
    self.guarded(context, [&] {
        self.handler.startElement({text(local), text(prefix)}, XmlAttributes(rows, attributes),
                                  {text(uri), declarations, static_cast<std::size_t>(namespaces), self});
    });
}

void Parse::onEndElement(void* context, const xmlChar*, const xmlChar*, const xmlChar*)
{
    Parse& self = of(context);
    --self.depth;
    self.guarded(context, [&] { self.handler.endElement(); });
}

template <auto Call>
void Parse::onText(void* context, const xmlChar* characters, int length)
{
    Parse& self = of(context);
    self.guarded(context, [&] { (self.handler.*Call)({text(characters), static_cast<std::size_t>(length)}); });
}

// Comments of the internal subset are not nodes of the document.
void Parse::onComment(void* context, const xmlChar* characters)
{
    Parse& self = of(context);
    if (static_cast<xmlParserCtxtPtr>(context)->inSubset == 0)
        self.guarded(context, [&] { self.handler.comment(view(characters)); });
}

void Parse::onInstruction(void* context, const xmlChar* target, const xmlChar* data)
{
    Parse& self = of(context);
    self.checkName(target, nullptr);
    if (static_cast<xmlParserCtxtPtr>(context)->inSubset == 0)
        self.guarded(context, [&] { self.handler.instruction(view(target), view(data)); });
}

} // namespace

std::optional<IXMLDOMParseError> parseXmlFile(const CString& fileName, XmlHandler& handler, std::size_t most)
{
    try {
        XmlSource file(fileName, most);
        std::optional<IXMLDOMParseError> error;
        if (!file.queryError())
            error = Parse(file, handler).run();
        // Before the parser's error, which would only say that the document ends too early.
        if (const int failure = file.queryError())
            return IXMLDOMParseError{inWords(failure), 0, 0, failure};
        return error;
    } catch (const std::bad_alloc&) {
        return IXMLDOMParseError{inWords(ENOMEM), 0, 0, ENOMEM};
    }
}

std::optional<IXMLDOMParseError> parseXmlText(std::string_view document, XmlHandler& handler, int firstLine)
{
    XmlSource source(document);
    return Parse(source, handler).run(firstLine);
}
