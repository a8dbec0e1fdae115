#include "Broker/Client/TypeStatements.h"

namespace {

// SQLite's driver returns no rows for a statement that begins with INSERT or UPDATE, but does for one that begins with
// WITH.
constexpr char kType[] = "WITH type (name, document, source, source_time) AS (SELECT ?, ?, ?, ?) ";

// WHERE true resolves an ambiguity of SQLite's grammar (https://www.sqlite.org/lang_upsert.html, "Parsing Ambiguity").
CString insertOr(const TypeTable& table)
{
    return CString(kType) + "INSERT INTO typeforge_types (name, document, revision" +
           table.ifSources(", source, source_time, source_revision") + ") SELECT name, document, 0" +
           table.ifSources(", source, source_time, 0") + " FROM type WHERE true ON CONFLICT (name) DO ";
}

} // namespace

CString insertStatement(const TypeTable& table)
{
    return insertOr(table) + "NOTHING RETURNING revision";
}

CString upsertStatement(const TypeTable& table)
{
    return insertOr(table) + "UPDATE SET document = excluded.document, revision = typeforge_types.revision + 1" +
           table.ifSources(", source = excluded.source, source_time = excluded.source_time, "
                           "source_revision = typeforge_types.revision + 1") +
           " RETURNING revision";
}

// The document is compared on the server, so it needn't be fetched. A null source comes back as an empty text.
CString findStatement(const TypeTable& table)
{
    return CString("SELECT revision, CASE WHEN document = ? THEN 1 ELSE 0 END") +
           (table.keepsSources ? ", CASE WHEN source_revision = revision THEN source END, source_time" : ", '', ''") +
           " FROM typeforge_types WHERE name = ?";
}

// CAST is needed, because parameters arrive as texts.
CString updateStatement(const TypeTable& table)
{
    return CString("WITH type (name, document, source, source_time, seen) AS (SELECT ?, ?, ?, ?, ?) ") +
           "UPDATE typeforge_types SET document = type.document, revision = typeforge_types.revision + 1" +
           table.ifSources(", source = type.source, source_time = type.source_time, "
                           "source_revision = typeforge_types.revision + 1") +
           " FROM type WHERE typeforge_types.name = type.name "
           "AND typeforge_types.revision = CAST(type.seen AS INTEGER) RETURNING revision";
}

// An outcome is set in the transaction of its type, so that a type that fails leaves none. A type that vanishes or
// changes between two statements ends the batch without an outcome; TypeStore then stores it singly, with retries.
CString batchProgram(const TypeTable& table)
{
    return CString(R"(DO $typeforge$
DECLARE
    batch text[] := string_to_array(current_setting('typeforge.batch'), E'\x01');
    old record;
    rule text;
    code text;
    outcomes text := '';
BEGIN
    FOR i IN 5 .. cardinality(batch) BY 2 LOOP
        code := '0';
        INSERT INTO typeforge_types (name, document, revision)") +
           table.ifSources(", source, source_time, source_revision") + ") VALUES (batch[i], batch[i + 1], 0" +
           table.ifSources(", batch[3], batch[4], 0") + R"() ON CONFLICT (name) DO NOTHING;
        IF NOT FOUND THEN
            SELECT revision, document = batch[i + 1] AS same, )" +
           (table.keepsSources ? "CASE WHEN source_revision = revision THEN source END AS source, source_time AS at"
                               : "'' AS source, '' AS at") +
           R"( INTO old FROM typeforge_types WHERE name = batch[i];
            EXIT WHEN NOT FOUND;
            rule := batch[CASE WHEN old.same THEN 2 ELSE 1 END];
            EXIT WHEN rule = 'stop';
            code := CASE WHEN rule = 'replace' THEN '1' WHEN old.same THEN '3' ELSE '2' END;
            IF code = '1' THEN
                UPDATE typeforge_types SET document = batch[i + 1], revision = revision + 1)" +
           table.ifSources(", source = batch[3], source_time = batch[4], source_revision = revision + 1") + R"(
                    WHERE name = batch[i] AND revision = old.revision;
                EXIT WHEN NOT FOUND;
            END IF;
            code := concat(code, old.source, E'\x02', old.at);
        END IF;
        outcomes := outcomes || code || E'\x01';
        PERFORM set_config('typeforge.outcomes', outcomes, false);
        COMMIT;
    END LOOP;
END $typeforge$)";
}
