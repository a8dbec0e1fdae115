#include "Wizard/Run/SourcePreview.h"

#include "Base/Progress.h"
#include "Base/QELApp.h"
#include "Files/File.h"
#include "Import/Registry/SourceSet.h"
#include "Ui/UiText.h"
#include "Wizard/Run/SourceList.h"

#include <QStringDecoder>

#include <filesystem>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr std::uint64_t kSmall = 50'000'000; // bytes; a larger source is only counted on request

// Limits of the part of a source that is read and shown.
constexpr qsizetype kMaxShown = 1 << 16; // bytes
constexpr qsizetype kMaxLines = 200;
constexpr qsizetype kMaxLine = 500; // characters; laying out longer lines would take long

// Returns the text as the importers read it; "" if the bytes are not text. A byte order mark decides first. Without
// one, a zero byte means that it is no text. An incomplete character at the end is dropped, because it would make the
// whole text Windows-1252.
QString decoded(QByteArray bytes)
{
    if (const auto encoding = QStringConverter::encodingForData(bytes))
        return QStringDecoder(*encoding).decode(bytes);
    if (bytes.contains('\0'))
        return {};
    while (bytes.size() > kMaxShown - 4 && static_cast<unsigned char>(bytes.back()) >= 0x80)
        bytes.chop(1);
    return toUi(toXmlText({bytes.data(), static_cast<std::size_t>(bytes.size())}));
}

// Returns the first lines of a file; "" if it is not text.
QString firstLines(const CString& fileName)
{
    QByteArray bytes(kMaxShown, Qt::Uninitialized);
    std::ifstream file(fileName, std::ios::binary);
    file.read(bytes.data(), bytes.size());
    bytes.truncate(file.gcount());
    QStringList lines;
    for (const QString& line : decoded(bytes).split('\n').mid(0, kMaxLines))
        lines.append(line.size() > kMaxLine ? line.left(kMaxLine) + " ..." : line);
    return lines.join('\n');
}

// Returns an error in words: its reason and its line, and its file if that isn't the source.
QString inWords(const SourceFault& fault, const CString& source)
{
    QString words = toUi(fault.reason);
    if (!fault.file.empty() && fault.file != source)
        words = toUi(std::filesystem::path(fault.file).filename().string()) + ": " + words;
    return fault.line > 0 ? words + " (line " + QString::number(fault.line) + ")" : words;
}

// Returns the size of all files. A file whose size is unknown counts as empty.
std::uint64_t sizeOf(const std::vector<CString>& files)
{
    std::uint64_t size = 0;
    for (const CString& file : files) {
        std::error_code failure;
        const std::uintmax_t own = std::filesystem::file_size(file, failure);
        size += failure ? 0 : own;
    }
    return size;
}

// Returns the files of a source; empty if one can't be read. Pipes are not readable here, so that a preview doesn't
// take their bytes from the import.
std::vector<CString> readableFiles(const SourcePreview::Source& source)
{
    std::vector<CString> files;
    try {
        files = source.importer->readsFolders() ? withoutFolders(source.names, source.importer, false) : source.names;
    } catch (const std::exception&) {
        return {};
    }
    for (const CString& file : files)
        if (testReadable(file) != FileCause::none)
            return {};
    return files;
}

} // namespace

// Starts a new thread, which waits for the previous one to end first, so that only one works at a time. The thread owns
// the one before. Typing a name starts many, each of which ends at its next poll of the stop token.
void SourcePreview::start(const Source& source, bool isWanted)
{
    drop();
    worker = std::jthread([this, source, isWanted, before = std::move(worker)](const std::stop_token& dropped) mutable {
        if (before.joinable())
            before.join();
        ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), 10); // of this thread only
        try {
            look(source, isWanted, dropped);
        } catch (const std::exception&) {
            return; // out of memory: nothing can be reported
        }
    });
}

// This and all functions below run in the preview's thread. Beside a full reading, the literal one takes one file only.
// Its counts are shown before the full reading begins.
void SourcePreview::look(const Source& source, bool isWanted, const std::stop_token& dropped)
{
    const std::vector<CString> files = readableFiles(source);
    const std::uint64_t size = sizeOf(files);
    const bool isCounted = size > 0 && (isWanted || size <= kSmall);
    tell(dropped, [this, text = files.empty() ? QString() : firstLines(files.front()), size, isCounted] {
        Q_EMIT begun(text, size, isCounted);
    });
    if (!isCounted)
        return;
    Count literal, full;
    const bool hasFull = source.importer->hasFull();
    if (!hasFull || (source.names.size() == 1 && !isFolder(source.names.front())))
        literal = count(std::unique_ptr<MsgBase>(source.importer->create()), source, files, dropped);
    tell(dropped, [this, literal, full] { Q_EMIT counted(literal, full); });
    if (!hasFull)
        return;
    full = count(std::unique_ptr<MsgBase>(source.importer->createFull()), source, files, dropped);
    tell(dropped, [this, literal, full] { Q_EMIT counted(literal, full); });
}

// Imports the source for its numbers. BackgroundWork keeps the import from the process's progress handler, which is the
// window's, and lets the stop token end it. The error handler keeps the first error instead of showing boxes.
SourcePreview::Count SourcePreview::count(std::unique_ptr<MsgBase> message, const Source& source,
                                          const std::vector<CString>& files, const std::stop_token& dropped)
{
    Count count;
    const BackgroundWork background([&dropped] { return !dropped.stop_requested(); });
    message->setErrorHandler([&](const CString&, const SourceFault& fault) {
        if (!fault.isWarning && count.failure.isEmpty())
            count.failure = inWords(fault, files.front());
    });
    if (auto* const fullReading = dynamic_cast<FullMessage*>(message.get());
        fullReading && source.importer->readsCatalogs())
        fullReading->setCatalogs(withEnvironmentCatalogs(source.catalogs));
    try {
        if (!message->setFurtherFiles({files.begin() + 1, files.end()}) && files.size() > 1) {
            count.failure = "this importer reads one file at a time";
        } else {
            message->parseFile(files.front(), source.basePath);
            count.types = message->beginEnum();
            count.losses = message->queryReport().queryTotal(SourceReport::loss);
        }
        count.isKnown = true;
    } catch (const Cancelled&) {
        // the preview was dropped
    } catch (const std::exception& error) {
        count.failure = messageOf(error);
        count.isKnown = true;
    }
    return count;
}

// Emits a signal in the window's thread, unless the preview has been dropped meanwhile. The token is checked there, in
// the thread that drops a preview, so none is emitted afterwards.
void SourcePreview::tell(const std::stop_token& dropped, std::function<void()> signal)
{
    QMetaObject::invokeMethod(
        this,
        [dropped, signal = std::move(signal)] {
            if (!dropped.stop_requested())
                signal();
        },
        Qt::QueuedConnection);
}
