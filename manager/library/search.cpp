// SPDX-License-Identifier: MIT
// A query turned into one statement. Values that faces share are tested once each, not once a face.
#include "faces/coverage.h"
#include "faces/namekey.h"
#include "manager/library/error.h"
#include "manager/library/facelookup.h"
#include "manager/library/library.h"
#include "manager/library/packing.h"
#include "manager/library/searchpage.h"

#include <algorithm>
#include <cstdint>
#include <glib.h>
#include <iterator>
#include <memory>
#include <set>
#include <utility>
#include <variant>

namespace manager {

namespace {

/// Conditions and the values of their parameters, in order.
class Conditions {
public:
    using Value = std::variant<std::int64_t, double, std::string>;

    void add(const std::string& sql, std::initializer_list<Value> values) {
        sql_ += " AND (" + sql + ")";
        values_.insert(values_.end(), values);
    }

    [[nodiscard]] const std::string& sql() const { return sql_; }
    void bind(Statement& statement) const {
        int parameter = 1;
        for (const Value& value : values_) {
            std::visit([&](const auto& plain) { statement.bind(parameter, plain); }, value);
            ++parameter;
        }
    }

private:
    std::string sql_;
    std::vector<Value> values_;
};

template <class Enumerator>
void addOneOf(Conditions& conditions, const std::string& column,
              const std::vector<Enumerator>& wanted) {
    if (wanted.empty()) {
        return;
    }
    std::string list;
    for (const Enumerator value : wanted) {
        list += (list.empty() ? "" : ", ") + std::to_string(static_cast<int>(value));
    }
    conditions.add(column + " IN (" + list + ")", {});
}

void addFlag(Conditions& conditions, const std::string& sql, const std::optional<bool>& wanted) {
    if (wanted) {
        conditions.add(sql + " = ?", {std::int64_t{*wanted}});
    }
}

// The numbers of a kind's values for which a test holds.
std::string among(SharedKind kind, const std::string& test) {
    return " IN (SELECT id FROM shared WHERE kind = " + std::to_string(static_cast<int>(kind)) +
           " AND " + test + ")";
}

void addRange(Conditions& conditions, const char* column, const char* axis,
              const std::optional<Range>& range) {
    if (!range) {
        return;
    }
    // A variable font is found by those of its instances that are so, or, where it has none, by the
    // first of them: who looks for bold faces is not to be shown all the others.
    const std::string name(column);
    conditions.add("face." + name + " BETWEEN ? AND ? OR (face.axes" +
                       among(SharedKind::Axes, "reaches(value, ?, ?, ?)") +
                       " AND NOT EXISTS (SELECT 1 FROM face AS other WHERE other.file = face.file"
                       " AND other.number & 65535 = face.number & 65535"
                       " AND (other.number < face.number OR other." +
                       name + " BETWEEN ? AND ?)))",
                   {range->from, range->to, std::string(axis), range->from, range->to, range->from,
                    range->to});
}

void addTags(Conditions& conditions, const std::string& column, SharedKind kind,
             const std::vector<std::string>& tags) {
    for (const std::string& tag : tags) {
        conditions.add(column + among(kind, "instr(value, ?)"), {" " + tag + " "});
    }
}

void addTexts(Conditions& conditions, const FaceQuery& query) {
    for (std::string_view left = query.text; !left.empty();) {
        // A pattern's parts are words: a word is found anywhere in a name.
        const std::string word(left.substr(0, left.find_first_of(" *")));
        left.remove_prefix(std::min(left.size(), word.size() + 1));
        const std::string key = faces::nameKey(word);
        if (key.empty()) {
            continue;
        }
        conditions.add("instr(face.names, ?)", {key});
    }
    if (!query.foundry.empty()) {
        conditions.add("face.foundry" + among(SharedKind::Foundry, "instr(lower(value), lower(?))"),
                       {query.foundry});
    }
    if (!query.licence.empty()) {
        const std::string test = "instr(lower(value), lower(?))";
        conditions.add("face.licence" + among(SharedKind::Licence, test) + " OR face.licence_link" +
                           among(SharedKind::LicenceLink, test) + " OR face.copyright" +
                           among(SharedKind::Copyright, test),
                       {query.licence, query.licence, query.licence});
    }
    if (!query.version.empty()) {
        conditions.add("substr(face.version, 1, length(?)) = ?", {query.version, query.version});
    }
}

void addPlace(Conditions& conditions, const FaceQuery& query) {
    if (!query.folder.empty()) {
        const PathRange range(query.folder);
        conditions.add("directory.path = ? OR (directory.path >= ? AND directory.path < ?)",
                       {query.folder, range.first, range.last});
    }
    if (query.container) {
        conditions.add("face.container = ?", {std::int64_t{*query.container}});
    }
    if (query.among) {
        std::string list;
        for (const FaceId id : *query.among) {
            list += (list.empty() ? "[" : ",") + std::to_string(static_cast<std::int64_t>(id));
        }
        conditions.add("face.id IN (SELECT value FROM json_each(?))",
                       {list.empty() ? "[]" : list + "]"});
    }
    addFlag(conditions, "directory.away", query.away);
    if (!query.spares) {
        // They are few, and so is what is looked up for each face.
        conditions.add("face.file NOT IN (SELECT id FROM file WHERE spare <> 0)", {});
    }
}

Conditions conditionsOf(const FaceQuery& query) {
    Conditions conditions;
    addPlace(conditions, query);
    addTexts(conditions, query);
    addRange(conditions, "weight", "wght", query.weight);
    addRange(conditions, "width", "wdth", query.width);
    addOneOf(conditions, "face.slant", query.slants);
    addOneOf(conditions, "face.technology", query.technologies);
    addOneOf(conditions, "face.classification", query.classifications);
    addFlag(conditions, "face.monospaced", query.monospaced);
    addFlag(conditions, "face.symbolic", query.symbolic);
    addFlag(conditions, "face.colour", query.colour);
    addFlag(conditions, "(face.axes IS NOT NULL)", query.variable);
    // Bits 0 to 3 of fsType: 0 may be installed, 8 is for documents that can be edited.
    addFlag(conditions, "(face.embedding IS NOT NULL AND (face.embedding & 15) IN (0, 8))",
            query.embeddable);
    addTags(conditions, "face.scripts", SharedKind::Scripts, query.scripts);
    addTags(conditions, "face.languages", SharedKind::Languages, query.languages);
    addTags(conditions, "face.features", SharedKind::Features, query.features);
    for (const std::string& tag : query.axes) {
        conditions.add("face.axes" + among(SharedKind::Axes, "instr(char(10) || value, ?)"),
                       {"\n" + tag + "\t"});
    }
    if (!query.characters.empty()) { // all at once: a page of text has more than SQL can nest
        faces::Coverage wanted;
        for (const char32_t character :
             std::set(query.characters.begin(), query.characters.end())) {
            faces::addCharacter(wanted, character);
        }
        conditions.add("face.coverage" + among(SharedKind::Coverage, "covers(value, ?)"),
                       {packCoverage(wanted)});
    }
    return conditions;
}

bool isOfPlace(const FaceQuery& query) {
    return query.order == FaceOrder::ByFolder || !query.folder.empty() || query.away;
}

/// Faces come by name in the order of an index that holds what most queries look at.
std::string statementOf(const FaceQuery& query, const Conditions& conditions) {
    std::string sql = "SELECT face.id, face.family_key, face.weight, face.width, face.slant "
                      "FROM face";
    if (isOfPlace(query)) {
        sql += " JOIN file ON file.id = face.file JOIN directory ON directory.id = file.directory";
    }
    return sql + " WHERE 1" + conditions.sql() + " ORDER BY " +
           (query.order == FaceOrder::ByFolder
                ? "directory.path, file.name, face.number, face.id"
                : "face.family_key, face.weight, face.width, face.slant");
}

std::string_view textOf(sqlite3_value* value) {
    const auto* data = static_cast<const char*>(sqlite3_value_blob(value));
    const int size = sqlite3_value_bytes(value);
    return data == nullptr ? std::string_view()
                           : std::string_view(data, static_cast<std::size_t>(size));
}

void reaches(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
    const std::string_view tag = textOf(values[1]);
    const double from = sqlite3_value_double(values[2]);
    const double to = sqlite3_value_double(values[3]);
    const auto axes = unpackAxes(textOf(values[0]));
    const bool found = std::any_of(axes.begin(), axes.end(), [&](const faces::Axis& axis) {
        return axis.tag == tag && axis.minimum <= to && axis.maximum >= from;
    });
    sqlite3_result_int(context, found ? 1 : 0);
}

void covers(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
    const auto coverage = unpackCoverage(textOf(values[0]));
    const auto wanted = unpackCoverage(textOf(values[1]));
    const bool all = std::all_of(wanted.begin(), wanted.end(), [&](const auto& range) {
        char32_t character = range.first;
        while (character <= range.second && faces::covers(coverage, character)) {
            ++character;
        }
        return character > range.second;
    });
    sqlite3_result_int(context, all ? 1 : 0);
}

// Again and again for one connection does no harm.
void addFunctions(Database& database) {
    constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
    sqlite3_create_function(database.handle(), "reaches", 4, flags, nullptr, reaches, nullptr,
                            nullptr);
    sqlite3_create_function(database.handle(), "covers", 2, flags, nullptr, covers, nullptr,
                            nullptr);
}

} // namespace

std::u32string charactersOf(const std::string& text) {
    glong length = 0;
    const std::unique_ptr<gunichar, void (*)(gpointer)> characters(
        g_utf8_to_ucs4(text.c_str(), -1, nullptr, &length, nullptr), g_free);
    if (!characters) {
        throw Error("not a text in UTF-8");
    }
    std::u32string all;
    std::copy_if(characters.get(), characters.get() + length, std::back_inserter(all),
                 [](gunichar character) { return g_unichar_iscntrl(character) == 0; });
    return all;
}

std::set<std::string> Library::tags(SharedKind kind) {
    const char* column = kind == SharedKind::Scripts     ? "scripts"
                         : kind == SharedKind::Languages ? "languages"
                         : kind == SharedKind::Features  ? "features"
                                                         : "axes";
    Statement statement(database_, ("SELECT value FROM shared WHERE id IN (SELECT " +
                                    std::string(column) + " FROM face)")
                                       .c_str());
    std::set<std::string> tags;
    while (statement.step()) {
        if (kind == SharedKind::Axes) {
            for (faces::Axis& axis : unpackAxes(statement.view(0))) {
                tags.insert(std::move(axis.tag));
            }
        } else {
            const auto more = unpackTags(statement.view(0));
            tags.insert(more.begin(), more.end());
        }
    }
    return tags;
}

FoundFaces Library::search(const FaceQuery& query) {
    addFunctions(database_);
    const Conditions conditions = conditionsOf(query);
    const Reading together(database_);
    Statement all(database_, statementOf(query, conditions).c_str());
    conditions.bind(all);
    SearchPage page(database_, query);
    while (all.step()) {
        page.add(all);
    }
    FoundFaces found;
    for (const std::int64_t id : page.end()) {
        const StatementUse use(byId_);
        byId_.bind(1, id).step();
        found.faces.push_back(matchOf(byId_));
    }
    found.total = page.count();
    return found;
}

std::unordered_map<std::int64_t, std::string> Library::familyKeys(const FaceQuery& query) {
    addFunctions(database_);
    const Conditions conditions = conditionsOf(query);
    Statement all(database_, statementOf(query, conditions).c_str());
    conditions.bind(all);
    std::unordered_map<std::int64_t, std::string> keys;
    while (all.step()) {
        keys.emplace(all.number(0), all.text(1));
    }
    return keys;
}

} // namespace manager
