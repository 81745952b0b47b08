// SPDX-License-Identifier: MIT
// A schema, and what it has to say about a document.
#pragma once

#include "misc/threads/smartpointer.h"
#include "misc/xml/ixmlnode.h"

#include <string>
#include <vector>

namespace Orvil {

/// [one-thread] Held through SmartPointer. The schema is the program's own and not outside input;
/// it may pull in other schemas. Throws Exception when it cannot be read.
class IXmlValidator : public SmartPointable {
public:
    /// A new validator for "LibXmlSchemaValidator", null for every other name.
    [[nodiscard]] static SmartPointer<IXmlValidator> getInstance(const std::string& name);

    /// Drops the present schema and reads another one. After a failure there is none.
    virtual void parseSpecification(const std::string& fileName) = 0;
    virtual void parseSpecificationString(const std::string& text) = 0;
    /// Whether the node's element and all below it follow the schema. Adds its messages.
    [[nodiscard]] virtual bool doValidate(IXmlNode* node) = 0;
    virtual void addError(const std::string& text);
    virtual void addWarning(const std::string& text);

    /// Clears the messages, then calls doValidate().
    [[nodiscard]] bool validate(IXmlNode* node);
    [[nodiscard]] const std::vector<std::string>& getErrors() const { return errors_; }
    [[nodiscard]] const std::vector<std::string>& getWarnings() const { return warnings_; }
    void clearMessages();

private:
    std::vector<std::string> errors_;
    std::vector<std::string> warnings_;
};

} // namespace Orvil
