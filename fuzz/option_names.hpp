// The names of all options, in the order of their table.
#pragma once

namespace textio::fuzz {

inline constexpr const char16_t* kOptionNames[] = {u"Delimiter",
                                                   u"LineEnding",
                                                   u"EndOfLine",
                                                   u"CommentStyle",
                                                   u"Whitespace",
                                                   u"Encoding",
                                                   u"DateLocale",
                                                   u"ExpChars",
                                                   u"VariableWidths",
                                                   u"NumHeaderLines",
                                                   u"DataLine",
                                                   u"NumVariables",
                                                   u"VariableNamesLine",
                                                   u"VariableUnitsLine",
                                                   u"VariableDescriptionsLine",
                                                   u"RowNamesField",
                                                   u"CollectOutput",
                                                   u"IsFile",
                                                   u"MultipleDelimsAsOne",
                                                   u"ParserType",
                                                   u"MissingRule",
                                                   u"ImportErrorRule",
                                                   u"ConsecutiveDelimitersRule",
                                                   u"EmptyLineRule",
                                                   u"ExtraColumnsRule",
                                                   u"LeadingDelimitersRule",
                                                   u"TextType",
                                                   u"DatetimeType",
                                                   u"PartialFieldRule",
                                                   u"TreatAsMissing",
                                                   u"TreatAsEmpty",
                                                   u"ReturnOnError",
                                                   u"EmptyValue"};

}  // namespace textio::fuzz
