#pragma once

#include "Base/MessageBox.h"
#include "Import/MsgUIDescriptor.h"
#include "Import/SourceReport.h"
#include "Model/TypeModel.h"

#include <functional>

/// The base of every importer and the container of one import. An importer implements parse() and declares in it what
/// it finds, by addElement() and addAttribute(); afterwards usages that occurred more than once become tables, and the
/// types can be enumerated, component types before the types that use them.
class MsgBase
{
public:
    /// 1 merges by name: a name seen twice is one element. 0: every addElement() makes a new one.
    explicit MsgBase(int mergeByName) : MsgBase(mergeByName, {}) {}
    virtual ~MsgBase() = default;
    MsgBase(const MsgBase&) = delete;
    MsgBase& operator=(const MsgBase&) = delete;

    /// Declares the elements of a source: the file's contents, or its name when isFileMode() is nonzero, or the text
    /// given to parseData(). Types are placed under `basePath`; `fileName` is "" for parseData(). Nonzero on success; a
    /// failure has been shown by the importer itself.
    virtual int parse(const CString& source, const CString& basePath, const CString& fileName) = 0;
    virtual int isFileMode() const { return 0; }
    virtual CString queryMainTypeName() const = 0;
    virtual MsgUIDescriptor* queryDescriptor() const = 0;

    /// Clears the model and imports a file. 0 when it can't be opened (message 2210), else what parse() answered. The
    /// model is empty when Cancelled is raised.
    int parseFile(const CString& fileName, const CString& basePath);

    /// Further files that parseFile() reads after its own, all as one source. False where an importer reads one alone.
    virtual bool setFurtherFiles(const std::vector<CString>&) { return false; }

    /// Has details noted in the report, too, which takes a literal reading a look at the source of its own. Losses are
    /// noted always.
    void wantReport() { isReportWanted = true; }

    /// What of the last source was not carried over into the types.
    const SourceReport& queryReport() const { return report; }

    /// Clears the model and imports `data`; answers what parse() answered. The same holds.
    int parseData(const CString& data, const CString& basePath);

    /// The name of the message document's root element: the main type's, each character that can't stand at its place
    /// in a tag replaced by "_", and no longer than a reader takes it (kMaxXmlName).
    CString queryFrameTag() const;

    /// Replaces `out` with the message document: header, main element, the documents of all types.
    void getXML(CString& out);

    /// The message document in pieces, in order, so that it never has to be in memory whole.
    void writeXML(const std::function<void(std::string_view)>& write);

    int beginEnum();     ///< puts the cursor before the first type and answers how many there are
    Element* enumNext(); ///< the next type, or null at the end and from then on

    /// Declares one occurrence of an element under `parent` (null at the top) and returns the element. A usage key that
    /// occurs again says that the element repeats inside its parent.
    Element* addElement(const CString& usageKey, const CString& path, const CString& name, const CString& description,
                        Element::ElementTypes type, Element* parent);

    /// The same for an attribute of `parent`, which must not be null: the element's name is the parent's name, "_" and
    /// `name`, and it never becomes a table.
    Element* addAttribute(const CString& usageKey, const CString& path, const CString& name, const CString& description,
                          Element::ElementTypes type, Element* parent);

    long queryNextPage() const { return queryDescriptor()->queryNextPage(); }
    CString& getBasePath() { return queryDescriptor()->getBasePath(); }

protected:
    /// `fieldPrefix` stands in front of the usage keys of fields, see UsageTable.
    MsgBase(int mergeByName, std::string_view fieldPrefix) : model(mergeByName != 0, fieldPrefix) {}

    /// The import in hand has been cancelled, in parse() or afterwards: all but the model, which is emptied, is to be
    /// as it was before.
    virtual void onCancelled() {}

    void clear(); ///< empties the model
    void onAfterParse() { model.arrange(); }

    Element* findElement(const CString& name) const { return model.findElement(name); }
    ChildElement* findUsage(const CString& usageKey) { return model.findUsage(usageKey); }
    void orderList(Element* element) { model.place(*element); }
    void addToOrderedList(Element* element) { model.addToOrder(element); }

    /// Shows `text` under the title "Typeforge Error" and answers 0, the result of an import that failed. `fault` says
    /// it in parts.
    static int fail(const CString& text, const SourceFault& fault);

    TypeModel model;
    SourceReport report;
    bool isReportWanted = false;

private:
    template <class Import>
    int orEmpty(Import import);

    std::size_t enumPosition = static_cast<std::size_t>(-1);
};
