#pragma once

#include "Base/SourceFault.h"
#include "Import/MsgUIDescriptor.h"
#include "Import/SourceReport.h"
#include "Model/TypeModel.h"

#include <functional>
#include <utility>

/// The base of all importers; holds the result of one import. An importer overrides parse() and declares the contents
/// of the source there, by addElement() and addAttribute(). Afterwards repeated usages become tables, and the types can
/// be enumerated in dependency order.
///
/// One object may import several times; each import replaces the result of the last. Only one thread at a time may use
/// it: the wizard imports in a separate thread, and reads the result after that has ended.
class MsgBase
{
public:
    /// 1 merges by name: all elements of a name are one. 0 makes a new element for each call of addElement().
    explicit MsgBase(int mergeByName) : MsgBase(mergeByName, {}) {}
    virtual ~MsgBase() = default;
    MsgBase(const MsgBase&) = delete;
    MsgBase& operator=(const MsgBase&) = delete;

    /// Declares the elements of a source: `source` is the file's contents or, if isFileMode(), its name, or the text
    /// given to parseData(). Types are placed under `basePath`; `fileName` is "" for parseData(). Returns nonzero on
    /// success. Most importers have shown a message on failure. Call parseFile() or parseData() instead, which clear
    /// the model first and order it afterwards.
    virtual int parse(const CString& source, const CString& basePath, const CString& fileName) = 0;
    /// Returns nonzero if parse() gets the name of the file instead of its contents.
    virtual int isFileMode() const { return 0; }
    /// Returns the name of the main type; empty if there is none.
    virtual CString queryMainTypeName() const = 0;
    /// Returns the row of the importer in the table of importers. Never null.
    virtual MsgUIDescriptor* queryDescriptor() const = 0;

    /// Clears the model and imports a file. Returns 0 if the file can't be opened (message 2210), else the result of
    /// parse(). If Cancelled is thrown, the model is empty. After a failure it may hold what was declared before.
    int parseFile(const CString& fileName, const CString& basePath);

    /// Sets further files that parseFile() reads after its own, all as one source. Returns false if the importer reads
    /// only one file. They apply to all following imports.
    virtual bool setFurtherFiles(const std::vector<CString>&) { return false; }

    /// Also reports details of a DTD in the literal reading, which takes additional time. All other details, and
    /// losses, are always reported.
    void wantReport() { isReportWanted = true; }

    /// Receives the errors and warnings of an import: the text for a message box, and the same in parts.
    using ErrorHandler = std::function<void(const CString& text, const SourceFault& fault)>;

    /// Sets where errors and warnings go; by default, or for an empty handler, to CQELApp::Error().
    void setErrorHandler(ErrorHandler handler) { errorHandler = std::move(handler); }

    /// Makes a full reading succeed for a source without types.
    void allowEmpty() { isEmptyAllowed = true; }

    /// Returns the report of the last import: what was not carried over into the types.
    const SourceReport& queryReport() const { return report; }

    /// The same as parseFile() for a text instead of a file. Not for importers in file mode.
    int parseData(const CString& data, const CString& basePath);

    /// Returns the name of the message document's root element: the main type's name with each invalid character
    /// replaced by "_", cut to the maximum length of a name (kMaxXmlName).
    CString queryFrameTag() const;

    /// Sets `out` to the message document: header, main element and the documents of all types.
    void getXML(CString& out);

    /// Passes the message document to `write` in pieces, in order, so that memory never holds all of it.
    void writeXML(const std::function<void(std::string_view)>& write);

    int beginEnum();     ///< moves the cursor before the first type; returns the number of types
    Element* enumNext(); ///< returns the next type; null at the end, also in further calls

    /// Declares one occurrence of an element under `parent` (null for a top-level element) and returns the element,
    /// which the model owns. If a usage key occurs again, the element repeats in its parent. Throws Cancelled.
    Element* addElement(const CString& usageKey, const CString& path, const CString& name, const CString& description,
                        Element::ElementTypes type, Element* parent);

    /// The same for an attribute of `parent`, which must not be null. The element is named after the parent, "_" and
    /// `name`, and never becomes a table.
    Element* addAttribute(const CString& usageKey, const CString& path, const CString& name, const CString& description,
                          Element::ElementTypes type, Element* parent);

    /// Return properties of the row. The base path is shared by all imports of the row, and the caller may change it.
    long queryNextPage() const { return queryDescriptor()->queryNextPage(); }
    CString& getBasePath() { return queryDescriptor()->getBasePath(); }

protected:
    /// `fieldPrefix` begins the usage keys of fields, see UsageTable.
    MsgBase(int mergeByName, std::string_view fieldPrefix) : model(mergeByName != 0, fieldPrefix) {}

    /// Called after an import was cancelled, in parse() or later. Restores the importer's state from before the import;
    /// the model is cleared afterwards.
    virtual void onCancelled() {}

    void clear(); ///< empties the model
    /// Makes tables and orders the types; called by parseFile() and parseData(). Throws Cancelled.
    void onAfterParse() { model.arrange(); }

    // Access to the model under the names that importers use, see TypeModel.
    Element* findElement(const CString& name) const { return model.findElement(name); }
    ChildElement* findUsage(const CString& usageKey) { return model.findUsage(usageKey); }
    void orderList(Element* element) { model.place(*element); }
    void addToOrderedList(Element* element) { model.addToOrder(element); }

    /// Reports that what was declared under `parent`, `times` times in a row, has the usage key of another record or
    /// field, `made.sharedWith`, because a name contains a ".". The other one becomes a table if it occurs once, but
    /// this one never does.
    void noteSharedKey(const TypeModel::Declared& made, const Element* parent, unsigned times, SourcePlace place);

    /// Passes an error or a warning to the handler. `fault` holds the same as `text`, in parts.
    void showFault(const CString& text, const SourceFault& fault) const;

    /// The same; returns 0, the result of a failed import.
    int fail(const CString& text, const SourceFault& fault) const;

    TypeModel model;
    SourceReport report;
    bool isReportWanted = false; // see wantReport()
    bool isEmptyAllowed = false; // see allowEmpty()

private:
    int parseAndArrange(CString source, const CString& basePath, const CString& fileName);

    ErrorHandler errorHandler;
    std::size_t enumPosition = static_cast<std::size_t>(-1); // of the cursor; beyond the end before beginEnum()
};
