#pragma once

#include "Import/Dtd/DTDEntities.h"
#include "Import/Full/FullMessage.h"

/// The importer of DTDs, XML and SGML, that reads them in full: parameter entities, modules, conditional sections. A
/// file may also be a document, of which the internal subset and the DTD that it names are read.
class DTDFullMessage : public FullMessage
{
public:
    /// Uses the row of the literal reading, and so its name and base path.
    DTDFullMessage();

    /// Returns a new importer, owned by the caller; the factory of the table of importers.
    static FullMessage* New() { return new DTDFullMessage; }

    /// Also returns "" for a file that can't be read.
    CString unsupportedByLiteral(const CString& fileName) const override;

    /// Each pair is a name and a value. The first value of a name takes precedence.
    bool setEntities(const std::vector<std::pair<CString, CString>>& wanted) override
    {
        given = wanted;
        return true;
    }

protected:
    void read(const CString& source, const CString& fileName, SourceTypes& types, SourceReport& report) override;

private:
    // `texts` are the contents of `files`, in the same order; results are positions in both.
    std::vector<std::size_t> findTops(std::span<const CString> files, std::span<const std::string_view> texts);
    DTDEntities::Text& begin(DTDEntities& entities, SourceTypes& types, const CString& file,
                             std::string_view text) const;

    std::vector<std::pair<CString, CString>> given; // entities declared by the caller, ahead of the DTD's own
};
