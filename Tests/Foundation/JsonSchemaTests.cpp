#include "Foundation/JsonSchema.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Support/Print.h"

#include <gtest/gtest.h>
#include <tuple>

using namespace corvane;

namespace {

QString violation(const QByteArray& value, const QByteArray& schema)
{
    const auto holder = jsonObject("{\"v\":" + value + '}');
    const auto rules = jsonObject(schema);
    EXPECT_TRUE(holder && rules) << value.constData() << schema.constData();
    return schemaViolation(holder->value("v"_L1), *rules).value_or(QString());
}

}

TEST(JsonSchema, whatBreaksARuleIsNamedWithItsPlace)
{
    const std::tuple<const char*, const char*, const char*> cases[] {
        { "3", R"({"type":"integer"})", "" },
        { "3.5", R"({"type":"integer"})", "answer is of the type number" },
        { "3.5", R"({"type":"number"})", "" },
        { "\"3\"", R"({"type":"integer"})", "answer is of the type string" },
        { "null", R"({"type":["string","null"]})", "" },
        { "true", R"({"type":["string","null"]})", "answer is of the type boolean" },
        { "false", R"({"type":"boolean"})", "" },
        { "[]", R"({"type":"object"})", "answer is of the type array" },
        { "{}", R"({"type":"array"})", "answer is of the type object" },
        { "null", R"({"type":"string"})", "answer is of the type null" },
        { "2", R"({"enum":[1,2]})", "" },
        { "3", R"({"enum":[1,2]})", "answer is none of the values that it may have" },
        { R"({"a":1,"b":null})", R"({"required":["a","b"]})", "" },
        { R"({"a":1})", R"({"required":["a","b"]})", "answer has no “b”" },
        { "3", R"({"required":["a"]})", "" },
        { R"({"a":{"b":"x"}})", R"({"properties":{"a":{"properties":{"b":{"type":"number"}}},"c":{"type":"null"}}})",
            "answer.a.b is of the type string" },
        { R"({"a":1})", R"({"properties":{"a":{"type":"number"}},"additionalProperties":false})", "" },
        { R"({"a":1,"b":2})", R"({"properties":{"a":{}},"additionalProperties":false})",
            "answer has “b”, which nobody asked for" },
        { R"({"b":2})", R"({"additionalProperties":true})", "" },
        { R"({"b":2})", R"({"additionalProperties":{"type":"number"}})",
            "answer has a rule for further properties that is not checked here" },
        { R"([1,2])", R"({"items":{"type":"number"}})", "" },
        { R"([1,"x"])", R"({"items":{"type":"number"}})", "answer[1] is of the type string" },
        { "[1]", R"({"minItems":1,"maxItems":1})", "" },
        { "[]", R"({"minItems":1})", "answer breaks its minItems of 1" },
        { "[1,2]", R"({"maxItems":1})", "answer breaks its maxItems of 1" },
        { "3", R"({"minItems":9,"minLength":9})", "" },
        { "\"😀\"", R"({"minLength":1,"maxLength":1})", "" },
        { "\"ab\"", R"({"maxLength":1})", "answer breaks its maxLength of 1" },
        { "\"\"", R"({"minLength":1})", "answer breaks its minLength of 1" },
        { "5", R"({"minimum":5,"maximum":5})", "" },
        { "4.5", R"({"minimum":5})", "answer breaks its minimum of 5" },
        { "5.5", R"({"maximum":5})", "answer breaks its maximum of 5" },
        { "\"x\"", R"({"minimum":5,"maximum":1,"minItems":2})", "" },
        { "1", R"({"title":"t","description":"d","$schema":"s","default":1,"examples":[]})", "" },
        { "\"x\"", R"({"pattern":"x"})", "answer has the rule “pattern”, which is not checked here" },
    };
    for (const auto& [value, schema, words] : cases)
        EXPECT_EQ(violation(value, schema), words) << value << ' ' << schema;
    EXPECT_EQ(schemaViolation(QJsonValue(QJsonValue::Undefined), { { "type", "string" } }),
        u"answer is of the type nothing"_s);
}
