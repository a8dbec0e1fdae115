#pragma once

#include "Base/Text.h"

class BrokerSession;
class MsgBase;
struct LogonOptions;

/// Returns why an address is invalid; empty if it is valid. CLI11 takes it as the validator of an option.
CString addressError(const CString& address);

/// Opens the repository of a broker, only for reading if `isForReading`. Without a user in `logon` the current user
/// logs on. Returns false if it can't be opened, which has been reported. Throws std::runtime_error if the user's
/// password can't be read, and ClientError if the client can't open a repository only for reading.
bool openBroker(BrokerSession& session, const CString& address, const LogonOptions& logon, bool isForReading);

/// The prefix that names a repository where the command line takes a document: "broker:SERVER[:PORT]".
inline constexpr std::string_view kBroker = "broker:";

/// Reads the types that the repository holds in the folders of `message`'s types, and keeps them as one document. Each
/// InputFile named `document`, "broker:SERVER[:PORT]", then reads it. Returns false on failure, which has been
/// reported; throws ClientError if the repository can't be read.
bool keepRepository(MsgBase& message, const CString& document, const LogonOptions& logon);
