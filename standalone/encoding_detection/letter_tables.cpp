// The frequencies are common knowledge, rounded to powers of two: a few letters show no more than
// an order of magnitude.
#include <vltextstream/standalone/encoding_detection/letter_tables.hpp>

namespace textio::standalone {
namespace {

// clang-format off
constexpr LanguageLetters kLanguages[] = {
    // English
    {"en",
     u"\u00E9\u00F6\u00FC\u00F1\u00E1\u00F3\u00E8\u00EF\u00ED\u00E7\u00E4\u00EB\u00EA\u00F4\u00E2"
     u"\u00F8\u00E5\u00E0\u00E3\u00FA\u00E6\u00EE\u00DF\u00F2\u00F0",
     "744444333332222"
     "2222211100",
     0.65, 0.0},
    // German
    {"de",
     u"\u00FC\u00E4\u00F6\u00DF\u00E9\u00E8\u00E7\u00EA\u00E1\u00F1",
     "7766200000",
     0.10, 0.0},
    // French
    {"fr",
     u"\u00E9\u00E8\u00E0\u00EA\u00E7\u00E2\u00F4\u00EE\u00F9\u00FB\u0153\u00EF\u00EB\u00FC\u00F6"
     u"\u00E6\u00FF\u00F1",
     "966543333221100"
     "000",
     0.08, 0.0},
    // Spanish
    {"es",
     u"\u00F3\u00ED\u00E1\u00E9\u00F1\u00FA\u00FC\u00E7",
     "77766520",
     0.08, 0.0},
    // Italian
    {"it",
     u"\u00E8\u00E0\u00F9\u00F2\u00E9\u00EC\u00EE\u00E7\u00FC\u00F6",
     "7755550000",
     0.15, 0.0},
    // Portuguese
    {"pt",
     u"\u00E3\u00E7\u00E1\u00E9\u00ED\u00F3\u00EA\u00F5\u00E2\u00FA\u00E0\u00F4\u00FC",
     "7666665544430",
     0.06, 0.0},
    // Dutch
    {"nl",
     u"\u00EB\u00E9\u00EF\u00F6\u00E8\u00FC\u00EA\u00F3\u00E7\u00E4\u00E0\u00E1\u00ED\u00F4\u00E2"
     u"\u00EE\u00FB\u00FA\u00E5",
     "876443322221110"
     "0000",
     0.30, 0.0},
    // Danish
    {"da",
     u"\u00F8\u00E5\u00E6\u00E9\u00F6\u00E4\u00FC\u00E8\u00DF",
     "777322200",
     0.08, 0.0},
    // Norwegian
    {"nb",
     u"\u00E5\u00F8\u00E6\u00E9\u00F2\u00F3\u00F4\u00F6\u00E4\u00FC\u00E8\u00E1",
     "875311111100",
     0.08, 0.0},
    // Swedish
    {"sv",
     u"\u00E4\u00E5\u00F6\u00E9\u00FC\u00E0\u00E8",
     "8873100",
     0.08, 0.0},
    // Finnish
    {"fi",
     u"\u00E4\u00F6\u00E5\u00E9\u0161\u017E\u00FC",
     "9621100",
     0.08, 0.0},
    // Icelandic
    {"is",
     u"\u00F0\u00E1\u00ED\u00FE\u00F3\u00F6\u00E6\u00E9\u00FA\u00FD",
     "7665555443",
     0.05, 0.0},
    // Polish
    {"pl",
     u"\u0142\u0119\u0105\u00F3\u017C\u015B\u0107\u0144\u017A\u00FC\u00E9\u00F6",
     "766665543000",
     0.05, 0.0},
    // Czech
    {"cs",
     u"\u00ED\u00E1\u00E9\u011B\u0159\u010D\u017E\u00FD\u0161\u016F\u00FA\u0148\u0165\u010F\u00F3"
     u"\u00F6\u00FC",
     "776655555432222"
     "00",
     0.05, 0.0},
    // Slovak
    {"sk",
     u"\u00E1\u00ED\u00E9\u010D\u00FD\u0161\u017E\u00FA\u0165\u013E\u0148\u00F4\u010F\u00E4\u00F3"
     u"\u013A\u0155\u011B\u00F6\u00FC",
     "766665555433322"
     "00000",
     0.05, 0.0},
    // Hungarian
    {"hu",
     u"\u00E1\u00E9\u00F6\u00F3\u0151\u00ED\u00FC\u00FA\u0171\u00E4",
     "7766555430",
     0.05, 0.0},
    // Romanian, with cedillas as old encodings have them, and with commas
    {"ro",
     u"\u0103\u00EE\u015F\u0163\u0219\u021B\u00E2\u00E9\u00F6\u00E1\u00FC",
     "76666650000",
     0.06, 0.0},
    // Croatian
    {"hr",
     u"\u010D\u0161\u017E\u0107\u0111\u00E9\u00F6\u00FC",
     "77665000",
     0.06, 0.0},
    // Slovene
    {"sl",
     u"\u010D\u0161\u017E\u0107\u0111\u00E9\u00F6\u00FC",
     "87720000",
     0.06, 0.0},
    // Albanian
    {"sq",
     u"\u00EB\u00E7\u00E9\u00F6\u00FC",
     "95000",
     0.08, 0.5},
    // Estonian
    {"et",
     u"\u00E4\u00F5\u00FC\u00F6\u0161\u017E\u00E9\u00E5",
     "77752100",
     0.06, 0.0},
    // Latvian
    {"lv",
     u"\u0101\u012B\u0113\u0161\u016B\u0146\u013C\u017E\u010D\u0137\u0123\u00F6\u00FC\u00E9",
     "86654443333000",
     0.05, 0.0},
    // Lithuanian
    {"lt",
     u"\u0117\u0173\u0161\u017E\u0105\u012F\u016B\u010D\u0119\u00F6\u00FC\u00E9",
     "766655543000",
     0.05, 0.0},
    // Turkish
    {"tr",
     u"\u0131\u00FC\u015F\u011F\u00E7\u00F6\u0130\u00E2\u00EE\u00FB\u00E9",
     "87666631000",
     0.06, 0.0},
    // Azerbaijani
    {"az",
     u"\u0259\u0131\u00FC\u015F\u011F\u00E7\u00F6\u0130",
     "97655552",
     0.06, 1.0},
    // Vietnamese, the tones as combining marks
    {"vi",
     u"\u0111\u01B0\u00EA\u00E2\u00F4\u01A1\u00E0\u0301\u0300\u0323\u00E1\u0309\u0103\u00ED\u0303"
     u"\u00F3\u00FA\u00E9\u00E3\u00E8",
     "777766666655444"
     "33333",
     0.05, 0.5},
    // Catalan
    {"ca",
     u"\u00E0\u00E9\u00F3\u00E8\u00ED\u00E7\u00F2\u00FA\u00EF\u00FC\u00B7\u00F1",
     "777665543331",
     0.08, 0.0},
    // Galician
    {"gl",
     u"\u00F3\u00E1\u00E9\u00ED\u00F1\u00FA\u00FC\u00EF\u00E7",
     "766655100",
     0.08, 0.5},
    // Basque
    {"eu",
     u"\u00F1\u00E7\u00E9\u00FC\u00E1\u00F3\u00ED",
     "8333222",
     0.50, 1.5},
    // Irish
    {"ga",
     u"\u00E1\u00ED\u00E9\u00F3\u00FA",
     "77766",
     0.08, 0.5},
    // Welsh
    {"cy",
     u"\u00E2\u0175\u0177\u00F4\u00EA\u00EE\u00EF\u00FB\u00E9\u00F6\u00E0\u1E85\u00E1",
     "6555443221100",
     0.20, 1.5},
    // Maltese
    {"mt",
     u"\u0127\u017C\u0121\u010B\u00E0\u00E8\u00F9\u00EC\u00F2\u00E9",
     "8766522221",
     0.06, 0.5},
    // Esperanto
    {"eo",
     u"\u011D\u016D\u0109\u015D\u0135\u0125\u00E9\u00F6\u00FC",
     "777652000",
     0.06, 1.0},
    // Faroese
    {"fo",
     u"\u00F0\u00ED\u00E1\u00F8\u00F3\u00E6\u00FD\u00FA",
     "76666555",
     0.05, 1.0},
    // Afrikaans
    {"af",
     u"\u00EB\u00EA\u00E9\u00EF\u00F4\u00F6\u00E8\u00FB\u00EE\u00FC",
     "8644332211",
     0.15, 1.5},
    // Russian
    {"ru",
     u"\u043E\u0435\u0430\u0438\u043D\u0442\u0441\u0440\u0432\u043B\u043A\u043C\u0434\u043F\u0443"
     u"\u044F\u044B\u044C\u0433\u0437\u0431\u0447\u0439\u0445\u0436\u0448\u044E\u0446\u0449\u044D"
     u"\u0444\u0451\u044A",
     "999888888877777"
     "766666666555444"
     "421",
     0.05, 0.0},
    // Bulgarian
    {"bg",
     u"\u0430\u0438\u043D\u043E\u0440\u0441\u043A\u0435\u0442\u043B\u043C\u0432\u0434\u0443\u0433"
     u"\u0431\u043F\u0439\u0447\u0437\u044F\u0444\u0446\u044A\u0445\u0436\u0448\u044E\u0449\u044C",
     "665555555444443"
     "333222222111100",
     0.05, 0.2},
    // Ukrainian
    {"uk",
     u"\u0430\u0456\u043D\u043A\u043E\u0440\u043C\u0442\u0441\u0438\u043B\u0435\u0432\u0434\u044C"
     u"\u0433\u0443\u0439\u0431\u043F\u0445\u0447\u044F\u0437\u0444\u0446\u0457\u044E\u0436\u0448"
     u"\u0454\u0491\u0449",
     "655555555544444"
     "443333322221110"
     "000",
     0.05, 0.3},
    // Serbian
    {"sr",
     u"\u0430\u0438\u0435\u043D\u0440\u043A\u043E\u0441\u0442\u043C\u043B\u0443\u0432\u0434\u0458"
     u"\u043F\u0433\u0431\u0445\u0447\u0437\u0446\u0444\u0448\u045A\u0459\u045F\u0436\u045B\u0452",
     "665555555444443"
     "333322221100000",
     0.05, 0.3},
    // Belarusian
    {"be",
     u"\u0430\u043D\u0456\u043A\u0441\u0440\u0442\u043B\u044B\u043C\u0434\u0435\u044F\u0443\u0433"
     u"\u043E\u0432\u0431\u043F\u0439\u0447\u044D\u045E\u0445\u0446\u0437\u0444\u044C\u0436\u0448"
     u"\u044E\u0451",
     "655555554444444"
     "433333332222211"
     "00",
     0.05, 0.5},
    // Macedonian
    {"mk",
     u"\u0430\u0438\u043D\u0435\u043E\u0440\u043A\u0441\u0442\u0432\u043C\u043B\u0434\u0443\u0458"
     u"\u0433\u043F\u0431\u0437\u0444\u0447\u0446\u0445\u0448\u045F\u045A\u0436\u0459\u045C\u0455"
     u"\u0453",
     "665555555444443"
     "333222211000000"
     "0",
     0.05, 0.7},
    // Greek
    {"el",
     u"\u03B1\u03B9\u03BF\u03C1\u03BD\u03C4\u03BA\u03B5\u03BC\u03BB\u03AC\u03C3\u03B3\u03C5\u03C2"
     u"\u03AF\u03C0\u03CC\u03B4\u03B2\u03AD\u03B7\u03AE\u03C7\u03CE\u03CD\u03B6\u03C9\u03C6\u03B8"
     u"\u03BE\u03CA\u03C8\u0390\u03CB\u03B0",
     "655555555544444"
     "443333332222221"
     "000000",
     0.06, 0.0},
    // Hebrew
    {"he",
     u"\u05D9\u05D5\u05E8\u05D0\u05E0\u05DC\u05DE\u05E7\u05D4\u05D8\u05E1\u05D1\u05EA\u05D3\u05E4"
     u"\u05D2\u05E9\u05DF\u05E2\u05D7\u05DD\u05D6\u05E6\u05DB\u05E5\u05E3\u05DA",
     "665555554444444"
     "443322222110",
     0.08, 0.0},
    // Arabic
    {"ar",
     u"\u064A\u0627\u0644\u0648\u0631\u0646\u0645\u062A\u0628\u0643\u0629\u0633\u062F\u0642\u063A"
     u"\u0641\u0623\u062C\u0639\u0632\u0637\u0647\u0635\u0634\u062D\u0625\u062B\u0626\u0636\u062E"
     u"\u064B\u0651\u0621\u0649\u0638\u0630\u0622\u064F\u0624\u064E\u064D\u0652\u0670\u0650\u064C",
     "665555555444433"
     "333222222111000"
     "000000000000000",
     0.06, 0.0},
    // Persian
    {"fa",
     u"\u0627\u06CC\u0648\u0631\u0646\u062A\u0645\u0644\u0633\u06A9\u062F\u0628\u0647\u06AF\u0642"
     u"\u067E\u0632\u062C\u0641\u0639\u0634\u0622\u0626\u0686\u0654\u062E\u063A\u0637\u062D\u0698"
     u"\u062B\u0635\u0630\u0636\u0638\u0651\u064D\u064C\u064B\u0629\u0624\u0623\u0621",
     "666555554444433"
     "333222211111000"
     "0000000000000",
     0.06, 0.0},
    // Thai
    {"th",
     u"\u0E32\u0E40\u0E23\u0E19\u0E2D\u0E25\u0E01\u0E34\u0E15\u0E21\u0E27\u0E35\u0E4C\u0E31\u0E42"
     u"\u0E22\u0E14\u0E1A\u0E0B\u0E2A\u0E07\u0E04\u0E39\u0E1B\u0E41\u0E17\u0E30\u0E48\u0E0A\u0E08"
     u"\u0E2B\u0E1F\u0E38\u0E44\u0E49\u0E1E\u0E2E\u0E02\u0E10\u0E24\u0E29\u0E37\u0E28\u0E47\u0E43"
     u"\u0E16\u0E18\u0E13\u0E0D\u0E20\u0E33\u0E0F\u0E4A\u0E1D\u0E36\u0E09\u0E11\u0E2F\u0E2C\u0E4B"
     u"\u0E46\u0E0E\u0E4E\u0E4D\u0E45\u0E3A\u0E26\u0E1C\u0E12\u0E0C\u0E06\u0E05\u0E03",
     "555555544444444"
     "443333333322222"
     "222221111000000"
     "000000000000000"
     "0000000000000",
     0.03, 0.0},
    // Urdu
    {"ur",
     u"\u06CC\u0627\u0646\u0648\u0631\u0645\u06A9\u0644\u0679\u0633\u0688\u0628\u06AF\u062A\u067E"
     u"\u06C1\u0641\u0632\u062F\u062C\u0642\u0634\u0686\u06D2\u0639\u06BE\u0637\u063A\u062D\u0635"
     u"\u062E\u0691\u0638\u0630\u0636\u0698\u062B\u0621",
     "665555555444333"
     "333322222220000"
     "00000000",
     0.06, 1.5},
};

constexpr Sign kSigns[] = {
    {u'\u00A0', '5', SignPlace::anywhere},
    {u'\u00A1', '3', SignPlace::opening},
    {u'\u00A2', '1', SignPlace::currency},
    {u'\u00A3', '5', SignPlace::currency},
    {u'\u00A4', '0', SignPlace::currency},
    {u'\u00A5', '2', SignPlace::currency},
    {u'\u00A6', '0', SignPlace::alone},
    {u'\u00A7', '4', SignPlace::alone},
    {u'\u00A8', '0', SignPlace::alone},
    {u'\u00A9', '3', SignPlace::alone},
    {u'\u00AA', '3', SignPlace::after_number},
    {u'\u00AB', '5', SignPlace::quote},
    {u'\u00AC', '0', SignPlace::alone},
    {u'\u00AD', '0', SignPlace::quote},
    {u'\u00AE', '3', SignPlace::alone},
    {u'\u00AF', '0', SignPlace::alone},
    {u'\u00B0', '7', SignPlace::after_number},
    {u'\u00B1', '4', SignPlace::between},
    {u'\u00B2', '5', SignPlace::after_letter},
    {u'\u00B3', '4', SignPlace::after_letter},
    {u'\u00B4', '2', SignPlace::quote},
    {u'\u00B5', '5', SignPlace::before_letter},
    {u'\u00B6', '0', SignPlace::alone},
    {u'\u00B7', '2', SignPlace::quote},
    {u'\u00B8', '0', SignPlace::alone},
    {u'\u00B9', '2', SignPlace::after_letter},
    {u'\u00BA', '4', SignPlace::after_number},
    {u'\u00BB', '5', SignPlace::quote},
    {u'\u00BC', '1', SignPlace::after_number},
    {u'\u00BD', '3', SignPlace::after_number},
    {u'\u00BE', '1', SignPlace::after_number},
    {u'\u00BF', '3', SignPlace::opening},
    {u'\u00D7', '4', SignPlace::between},
    {u'\u00F7', '1', SignPlace::between},
    {u'\u0192', '0', SignPlace::alone},
    {u'\u02C6', '0', SignPlace::alone},
    {u'\u02C7', '0', SignPlace::alone},
    {u'\u02D8', '0', SignPlace::alone},
    {u'\u02D9', '0', SignPlace::alone},
    {u'\u02DB', '0', SignPlace::alone},
    {u'\u02DC', '0', SignPlace::alone},
    {u'\u02DD', '0', SignPlace::alone},
    {u'\u0384', '0', SignPlace::quote},
    {u'\u0385', '0', SignPlace::quote},
    {u'\u0387', '1', SignPlace::closing},
    {u'\u03A9', '0', SignPlace::alone},
    {u'\u03BC', '3', SignPlace::before_letter},
    {u'\u03C0', '0', SignPlace::alone},
    {u'\u060C', '4', SignPlace::closing},
    {u'\u061B', '2', SignPlace::closing},
    {u'\u061F', '3', SignPlace::closing},
    {u'\u0E3F', '3', SignPlace::currency},
    {u'\u200C', '3', SignPlace::anywhere},
    {u'\u200D', '0', SignPlace::anywhere},
    {u'\u200E', '1', SignPlace::anywhere},
    {u'\u200F', '1', SignPlace::anywhere},
    {u'\u2013', '7', SignPlace::dash},
    {u'\u2014', '5', SignPlace::dash},
    {u'\u2015', '1', SignPlace::dash},
    {u'\u2017', '0', SignPlace::drawing},
    {u'\u2018', '4', SignPlace::quote},
    {u'\u2019', '7', SignPlace::quote},
    {u'\u201A', '0', SignPlace::opening},
    {u'\u201C', '5', SignPlace::quote},
    {u'\u201D', '5', SignPlace::closing},
    {u'\u201E', '4', SignPlace::opening},
    {u'\u2020', '1', SignPlace::alone},
    {u'\u2021', '0', SignPlace::alone},
    {u'\u2022', '4', SignPlace::alone},
    {u'\u2026', '4', SignPlace::closing},
    {u'\u2030', '2', SignPlace::after_number},
    {u'\u2039', '1', SignPlace::opening},
    {u'\u203A', '1', SignPlace::closing},
    {u'\u2044', '0', SignPlace::alone},
    {u'\u20AA', '3', SignPlace::currency},
    {u'\u20AB', '3', SignPlace::currency},
    {u'\u20AC', '6', SignPlace::currency},
    {u'\u2116', '5', SignPlace::opening},
    {u'\u2122', '2', SignPlace::alone},
    {u'\u2202', '0', SignPlace::alone},
    {u'\u2206', '0', SignPlace::before_letter},
    {u'\u220F', '0', SignPlace::alone},
    {u'\u2211', '0', SignPlace::alone},
    {u'\u221A', '0', SignPlace::alone},
    {u'\u221E', '0', SignPlace::alone},
    {u'\u222B', '0', SignPlace::alone},
    {u'\u2248', '1', SignPlace::between},
    {u'\u2260', '0', SignPlace::between},
    {u'\u2264', '2', SignPlace::between},
    {u'\u2265', '2', SignPlace::between},
    {u'\u2310', '0', SignPlace::alone},
    {u'\u2500', '6', SignPlace::drawing},
    {u'\u2502', '6', SignPlace::drawing},
    {u'\u250C', '2', SignPlace::drawing},
    {u'\u2510', '2', SignPlace::drawing},
    {u'\u2514', '2', SignPlace::drawing},
    {u'\u2518', '2', SignPlace::drawing},
    {u'\u251C', '2', SignPlace::drawing},
    {u'\u2524', '2', SignPlace::drawing},
    {u'\u252C', '3', SignPlace::drawing},
    {u'\u2534', '2', SignPlace::drawing},
    {u'\u253C', '4', SignPlace::drawing},
    {u'\u2550', '5', SignPlace::drawing},
    {u'\u2551', '5', SignPlace::drawing},
    {u'\u2552', '0', SignPlace::drawing},
    {u'\u2553', '0', SignPlace::drawing},
    {u'\u2554', '1', SignPlace::drawing},
    {u'\u2555', '0', SignPlace::drawing},
    {u'\u2556', '0', SignPlace::drawing},
    {u'\u2557', '1', SignPlace::drawing},
    {u'\u2558', '0', SignPlace::drawing},
    {u'\u2559', '0', SignPlace::drawing},
    {u'\u255A', '1', SignPlace::drawing},
    {u'\u255B', '0', SignPlace::drawing},
    {u'\u255C', '0', SignPlace::drawing},
    {u'\u255D', '1', SignPlace::drawing},
    {u'\u255E', '0', SignPlace::drawing},
    {u'\u255F', '0', SignPlace::drawing},
    {u'\u2560', '1', SignPlace::drawing},
    {u'\u2561', '0', SignPlace::drawing},
    {u'\u2562', '0', SignPlace::drawing},
    {u'\u2563', '1', SignPlace::drawing},
    {u'\u2564', '0', SignPlace::drawing},
    {u'\u2565', '0', SignPlace::drawing},
    {u'\u2566', '1', SignPlace::drawing},
    {u'\u2567', '0', SignPlace::drawing},
    {u'\u2568', '0', SignPlace::drawing},
    {u'\u2569', '1', SignPlace::drawing},
    {u'\u256A', '0', SignPlace::drawing},
    {u'\u256B', '0', SignPlace::drawing},
    {u'\u256C', '2', SignPlace::drawing},
    {u'\u2580', '0', SignPlace::drawing},
    {u'\u2584', '0', SignPlace::drawing},
    {u'\u2588', '1', SignPlace::drawing},
    {u'\u2591', '1', SignPlace::drawing},
    {u'\u2592', '0', SignPlace::drawing},
    {u'\u2593', '0', SignPlace::drawing},
    {u'\u25A0', '1', SignPlace::alone},
    {u'\u25CA', '0', SignPlace::alone},
    {u'\u2666', '0', SignPlace::alone},
};

constexpr char16_t kHiragana[] =
    u"\u306E\u3044\u308B\u306F\u306B\u3092\u305F\u3057\u3068\u3067\u304C\u3066\u306A\u308C\u3063"
    u"\u304B\u3082\u3055\u3059\u3089\u308A\u3053\u3046\u307E\u3093\u304F\u304D\u3088\u3060\u305B"
    u"\u304A\u305D\u3042\u3064\u3051\u3069\u307F\u3048\u3081\u3084\u3058\u3070\u308F\u3061\u3079"
    u"\u307B\u3083\u3087\u3072\u308D\u3073\u305A\u3080\u3076\u3054\u306D\u3052\u3085\u3078\u3075"
    u"\u304E\u3086\u306C\u3050\u3056\u3065\u305E\u305C\u3071\u307C\u307D";
constexpr char16_t kKatakana[] =
    u"\u30FC\u30F3\u30B9\u30EB\u30C8\u30EA\u30E9\u30AF\u30A4\u30A2\u30C9\u30B7\u30EC\u30ED\u30BF"
    u"\u30D5\u30DE\u30D7\u30B8\u30B3\u30D0\u30C3\u30C6\u30C7\u30B5\u30E1\u30A3\u30AB\u30AD\u30B0"
    u"\u30A6\u30CB\u30AA\u30DF\u30D1\u30CA\u30E0\u30D3\u30CF\u30DC\u30A8\u30DD\u30C1\u30B1\u30C4"
    u"\u30C0\u30BB\u30E2\u30BD\u30DA\u30EF\u30E4\u30CE\u30A9\u30A1\u30A7\u30E3\u30E5\u30E7\u30AC"
    u"\u30B2\u30B4\u30B6\u30BA\u30BC\u30D2\u30D8\u30DB\u30D9\u30D6\u30D4\u30E6\u30E8\u30CD\u30CC"
    u"\u30BE";
constexpr char16_t kKanji[] =
    u"\u65E5\u4E00\u56FD\u4F1A\u4EBA\u5E74\u5927\u5341\u4E8C\u672C\u4E2D\u9577\u51FA\u4E09\u540C"
    u"\u6642\u653F\u4E8B\u81EA\u884C\u793E\u898B\u6708\u5206\u8B70\u5F8C\u524D\u6C11\u751F\u9023"
    u"\u4E94\u767A\u9593\u5BFE\u4E0A\u90E8\u6771\u8005\u515A\u5730\u5408\u5E02\u696D\u5185\u76F8"
    u"\u65B9\u56DB\u5B9A\u4ECA\u56DE\u65B0\u5834\u91D1\u54E1\u4E5D\u5165\u9078\u7ACB\u958B\u624B"
    u"\u7C73\u529B\u5B66\u554F\u9AD8\u4EE3\u660E\u5B9F\u5186\u95A2\u6C7A\u5B50\u52D5\u4EAC\u5168"
    u"\u76EE\u8868\u6226\u7D4C\u901A\u5916\u6700\u8A00\u6C0F\u73FE\u7406\u8ABF\u4F53\u5316\u7530"
    u"\u5F53\u516B\u516D\u7D04\u4E3B\u984C\u4E0B\u9996\u610F\u6CD5\u4E0D\u6765\u4F5C\u6027\u7684"
    u"\u8981\u7528\u5236\u6CBB\u5EA6\u52D9\u5F37\u6C17\u5C0F\u4E03\u6210\u671F\u516C\u91CE\u5354"
    u"\u53D6\u90FD\u548C\u7D71\u4EE5\u6A5F\u5E73\u7DCF\u52A0\u5C71\u601D\u5BB6\u8A71\u4E16\u53D7"
    u"\u533A\u9818\u591A\u770C\u7D9A\u9032\u6B63\u5B89\u8A2D\u4FDD\u6539\u6570\u8A18\u9662\u5973"
    u"\u521D\u5317\u5348\u6307\u6A29\u5FC3\u754C\u652F\u7B2C\u7523\u7D50\u767E\u6D3E\u70B9\u6559"
    u"\u5831\u6E08\u66F8\u5E9C\u6D3B\u539F\u5148\u5171\u5F97\u89E3\u540D\u4EA4\u8CC7\u4E88\u5DDD"
    u"\u5411\u969B\u67FB\u52DD\u9762\u59D4\u544A\u8ECD\u6587\u53CD\u5143\u91CD\u8FD1\u5343\u8003"
    u"\u5224\u8A8D\u753B\u6D77\u53C2\u58F2\u5229\u7D44\u77E5\u6848\u9053\u4FE1\u7B56\u96C6\u5728"
    u"\u4EF6\u56E3\u5225\u7269\u5074\u4EFB\u5F15\u4F7F\u6C42\u6240\u6B21\u6C34\u534A\u54C1\u6628"
    u"\u8AD6\u8A08\u6B7B\u5B98\u5897\u4FC2\u611F\u7279\u60C5\u6295\u793A\u5909\u6253\u7537\u57FA"
    u"\u79C1\u5404\u59CB\u5CF6\u76F4\u4E21\u671D\u9769\u4FA1\u5F0F\u78BA\u6751\u63D0\u904B\u7D42"
    u"\u6319\u679C\u897F\u52E2\u6E1B\u53F0\u5E83\u5BB9\u5FC5\u5FDC\u6F14\u96FB\u6B73\u4F4F\u4E89"
    u"\u8AC7\u80FD\u7121\u518D\u4F4D\u7F6E\u4F01\u771F\u6D41\u683C\u6709\u53E3\u904E\u5C40\u5C11"
    u"\u653E\u7A0E\u691C\u85E4\u753A\u5E38\u6821\u6599\u6CA2\u72B6\u5DE5\u5EFA\u8A9E\u7403\u55B6"
    u"\u7A7A\u8077\u8A3C\u571F\u4E0E\u6025\u6B62\u9001\u63F4\u4F9B\u53EF\u5F79\u69CB\u6728\u5272"
    u"\u805E\u8EAB\u8CBB\u4ED8\u65BD\u5207\u7531\u8AAC\u8EE2\u98DF\u6BD4\u96E3\u9632\u88DC\u8ECA"
    u"\u512A\u592B\u7814\u53CE\u65AD\u4E95\u4F55\u5357\u77F3\u8DB3\u9055\u6D88\u795E\u756A\u898F"
    u"\u8853\u8B77\u5C55\u614B\u5C0E\u5099\u5B85\u5BB3\u914D\u526F\u7B97\u8996\u6761\u72EC\u8B66"
    u"\u7A76\u80B2\u5E2D\u8D77\u4E07\u7740\u4E57\u5E97\u8FF0\u6B8B\u60F3\u7DDA\u7387\u75C5\u8FB2"
    u"\u5DDE\u58F0\u8CEA\u5FF5\u5F85\u8A66\u65CF\u8C61\u9280\u57DF\u52A9\u52B4\u4F8B\u7136\u65E9"
    u"\u5F35\u6620\u9650\u89AA\u984D\u76E3\u74B0\u9A13\u8FFD\u5546\u8449\u7FA9\u4F1D\u50CD\u5F62"
    u"\u666F\u843D\u597D\u9000\u6E96\u8FBA\u9020\u82F1\u88AB\u682A\u982D\u6280\u4F4E\u6BCE\u533B"
    u"\u5FA9\u5473\u8CA0\u5931\u79FB\u5DEE\u500B\u9580\u5199\u8A55\u8AB2\u672B\u5B88\u82E5\u6975"
    u"\u7A2E\u7F8E\u5F71\u547D\u798F\u91CF\u671B\u677E\u975E\u6838\u89B3\u5BDF\u6574\u6BB5\u6A2A"
    u"\u578B\u767D\u6DF1\u5B57\u591C\u88FD\u7968\u6CC1\u97F3\u7533\u69D8\u8CA1\u6E2F\u8B58\u6CE8"
    u"\u547C\u9054\u6625\u590F\u79CB\u51AC\u6E29\u6E7F\u98A8\u901F\u99C5\u53F7\u96E8\u96EA\u66C7"
    u"\u6674\u66DC\u5747\u5EAB\u5BA2\u6255";
constexpr char16_t kSimplified[] =
    u"\u7684\u4E00\u662F\u4E0D\u4E86\u5728\u4EBA\u6709\u6211\u4ED6\u8FD9\u4E2A\u4EEC\u4E2D\u6765"
    u"\u4E0A\u5927\u4E3A\u548C\u56FD\u5730\u5230\u4EE5\u8BF4\u65F6\u8981\u5C31\u51FA\u4F1A\u53EF"
    u"\u4E5F\u4F60\u5BF9\u751F\u80FD\u800C\u5B50\u90A3\u5F97\u4E8E\u7740\u4E0B\u81EA\u4E4B\u5E74"
    u"\u8FC7\u53D1\u540E\u4F5C\u91CC\u7528\u9053\u884C\u6240\u7136\u5BB6\u79CD\u4E8B\u6210\u65B9"
    u"\u591A\u7ECF\u4E48\u53BB\u6CD5\u5B66\u5982\u90FD\u540C\u73B0\u5F53\u6CA1\u52A8\u9762\u8D77"
    u"\u770B\u5B9A\u5929\u5206\u8FD8\u8FDB\u597D\u5C0F\u90E8\u5176\u4E9B\u4E3B\u6837\u7406\u5FC3"
    u"\u5979\u672C\u524D\u5F00\u4F46\u56E0\u53EA\u4ECE\u60F3\u5B9E\u65E5\u519B\u8005\u610F\u65E0"
    u"\u529B\u5B83\u4E0E\u957F\u628A\u673A\u5341\u6C11\u7B2C\u516C\u6B64\u5DF2\u5DE5\u4F7F\u60C5"
    u"\u660E\u6027\u77E5\u5168\u4E09\u53C8\u5173\u70B9\u6B63\u4E1A\u5916\u5C06\u4E24\u9AD8\u95F4"
    u"\u7531\u95EE\u5F88\u6700\u91CD\u5E76\u7269\u624B\u5E94\u6218\u5411\u5934\u6587\u4F53\u653F"
    u"\u7F8E\u76F8\u89C1\u88AB\u5229\u4EC0\u4E8C\u7B49\u4EA7\u6216\u65B0\u5DF1\u5236\u8EAB\u679C"
    u"\u52A0\u897F\u65AF\u6708\u8BDD\u5408\u56DE\u7279\u4EE3\u5185\u4FE1\u8868\u5316\u8001\u7ED9"
    u"\u4E16\u4F4D\u6B21\u5EA6\u95E8\u4EFB\u5E38\u5148\u6D77\u901A\u6559\u513F\u539F\u4E1C\u58F0"
    u"\u63D0\u7ACB\u53CA\u6BD4\u5458\u89E3\u6C34\u540D\u771F\u8BBA\u5904\u8D70\u4E49\u5404\u5165"
    u"\u51E0\u53E3\u8BA4\u6761\u5E73\u7CFB\u6C14\u9898\u6D3B\u5C14\u66F4\u522B\u6253\u5973\u53D8"
    u"\u56DB\u795E\u603B\u4F55\u7535\u6570\u5B89\u5C11\u62A5\u624D\u7ED3\u53CD\u53D7\u76EE\u592A"
    u"\u91CF\u518D\u611F\u5EFA\u52A1\u505A\u63A5\u5FC5\u573A\u4EF6\u8BA1\u7BA1\u671F\u5E02\u76F4"
    u"\u5FB7\u8D44\u547D\u5C71\u91D1\u6307\u514B\u8BB8\u7EDF\u533A\u4FDD\u81F3\u961F\u5F62\u793E"
    u"\u4FBF\u7A7A\u51B3\u6CBB\u5C55\u9A6C\u79D1\u53F8\u4E94\u57FA\u773C\u4E66\u975E\u5219\u542C"
    u"\u767D\u5374\u754C\u8FBE\u5149\u653E\u5F3A\u5373\u50CF\u96BE\u4E14\u6743\u601D\u738B\u8C61"
    u"\u5B8C\u8BBE\u5F0F\u8272\u8DEF\u8BB0\u5357\u54C1\u4F4F\u544A\u7C7B\u6C42\u636E\u7A0B\u5317"
    u"\u8FB9\u6B7B\u5F20\u8BE5\u4EA4\u89C4\u4E07\u53D6\u62C9\u683C\u671B\u89C9\u672F\u9886\u5171"
    u"\u786E\u4F20\u5E08\u89C2\u6E05\u4ECA\u5207\u9662\u8BA9\u8BC6\u5019\u5E26\u5BFC\u4E89\u8FD0"
    u"\u516D\u4E03\u516B\u4E5D\u767E\u5343\u6625\u590F\u79CB\u51AC\u6E29\u6E7F\u98CE\u901F\u7AD9"
    u"\u53F7\u4EF7\u57CE\u53BF\u7701\u4EAC\u5DDE\u5E7F\u6CB3\u6C5F\u6E56\u5C9B\u5E97\u8D2D\u9500"
    u"\u552E\u5546\u5BA2\u6237\u5740\u59D3\u7537\u5C81\u578B\u5355\u7C73\u5428\u8F66\u7968\u73ED"
    u"\u5468\u661F\u5348\u665A\u65E9\u96E8\u96EA\u4E91\u6674\u4F4E\u5747\u6D4B";
constexpr char16_t kTraditional[] =
    u"\u7684\u4E00\u662F\u4E0D\u4E86\u5728\u4EBA\u6709\u6211\u4ED6\u9019\u500B\u5011\u4E2D\u4F86"
    u"\u4E0A\u5927\u70BA\u548C\u570B\u5730\u5230\u4EE5\u8AAA\u6642\u8981\u5C31\u51FA\u6703\u53EF"
    u"\u4E5F\u4F60\u5C0D\u751F\u80FD\u800C\u5B50\u90A3\u5F97\u65BC\u8457\u4E0B\u81EA\u4E4B\u5E74"
    u"\u904E\u767C\u5F8C\u4F5C\u91CC\u7528\u9053\u884C\u6240\u7136\u5BB6\u7A2E\u4E8B\u6210\u65B9"
    u"\u591A\u7D93\u9EBC\u53BB\u6CD5\u5B78\u5982\u90FD\u540C\u73FE\u7576\u6C92\u52D5\u9762\u8D77"
    u"\u770B\u5B9A\u5929\u5206\u9084\u9032\u597D\u5C0F\u90E8\u5176\u4E9B\u4E3B\u6A23\u7406\u5FC3"
    u"\u5979\u672C\u524D\u958B\u4F46\u56E0\u53EA\u5F9E\u60F3\u5BE6\u65E5\u8ECD\u8005\u610F\u7121"
    u"\u529B\u5B83\u8207\u9577\u628A\u6A5F\u5341\u6C11\u7B2C\u516C\u6B64\u5DF2\u5DE5\u4F7F\u60C5"
    u"\u660E\u6027\u77E5\u5168\u4E09\u53C8\u95DC\u9EDE\u6B63\u696D\u5916\u5C07\u5169\u9AD8\u9593"
    u"\u7531\u554F\u5F88\u6700\u91CD\u4E26\u7269\u624B\u61C9\u6230\u5411\u982D\u6587\u9AD4\u653F"
    u"\u7F8E\u76F8\u898B\u88AB\u5229\u4EC0\u4E8C\u7B49\u7522\u6216\u65B0\u5DF1\u5236\u8EAB\u679C"
    u"\u52A0\u897F\u65AF\u6708\u8A71\u5408\u56DE\u7279\u4EE3\u5167\u4FE1\u8868\u5316\u8001\u7D66"
    u"\u4E16\u4F4D\u6B21\u5EA6\u9580\u4EFB\u5E38\u5148\u6D77\u901A\u6559\u5152\u539F\u6771\u8072"
    u"\u63D0\u7ACB\u53CA\u6BD4\u54E1\u89E3\u6C34\u540D\u771F\u8AD6\u8655\u8D70\u7FA9\u5404\u5165"
    u"\u5E7E\u53E3\u8A8D\u689D\u5E73\u7CFB\u6C23\u984C\u6D3B\u723E\u66F4\u5225\u6253\u5973\u8B8A"
    u"\u56DB\u795E\u7E3D\u4F55\u96FB\u6578\u5B89\u5C11\u5831\u624D\u7D50\u53CD\u53D7\u76EE\u592A"
    u"\u91CF\u518D\u611F\u5EFA\u52D9\u505A\u63A5\u5FC5\u5834\u4EF6\u8A08\u7BA1\u671F\u5E02\u76F4"
    u"\u5FB7\u8CC7\u547D\u5C71\u91D1\u6307\u514B\u8A31\u7D71\u5340\u4FDD\u81F3\u968A\u5F62\u793E"
    u"\u4FBF\u7A7A\u6C7A\u6CBB\u5C55\u99AC\u79D1\u53F8\u4E94\u57FA\u773C\u66F8\u975E\u5247\u807D"
    u"\u767D\u537B\u754C\u9054\u5149\u653E\u5F37\u5373\u50CF\u96E3\u4E14\u6B0A\u601D\u738B\u8C61"
    u"\u5B8C\u8A2D\u5F0F\u8272\u8DEF\u8A18\u5357\u54C1\u4F4F\u544A\u985E\u6C42\u64DA\u7A0B\u5317"
    u"\u908A\u6B7B\u5F35\u8A72\u4EA4\u898F\u842C\u53D6\u62C9\u683C\u671B\u89BA\u8853\u9818\u5171"
    u"\u78BA\u50B3\u5E2B\u89C0\u6E05\u4ECA\u5207\u9662\u8B93\u8B58\u5019\u5E36\u5C0E\u722D\u904B"
    u"\u516D\u4E03\u516B\u4E5D\u767E\u5343\u6625\u590F\u79CB\u51AC\u6EAB\u6FD5\u98A8\u901F\u7AD9"
    u"\u865F\u50F9\u57CE\u7E23\u7701\u4EAC\u5DDE\u5EE3\u6CB3\u6C5F\u6E56\u5CF6\u5E97\u8CFC\u92B7"
    u"\u552E\u5546\u5BA2\u6236\u5740\u59D3\u7537\u6B72\u578B\u55AE\u7C73\u5678\u8ECA\u7968\u73ED"
    u"\u5468\u661F\u5348\u665A\u65E9\u96E8\u96EA\u96F2\u6674\u4F4E\u5747\u6E2C";
constexpr char16_t kHangul[] =
    u"\uC774\uB2E4\uB294\uC758\uC5D0\uAC00\uACE0\uC744\uD558\uC9C0\uB85C\uD55C\uC0AC\uC740\uB97C"
    u"\uB300\uB3C4\uC790\uC11C\uAE30\uC815\uC2DC\uB098\uC778\uC5B4\uADF8\uB9AC\uC544\uD574\uBD80"
    u"\uC77C\uC218\uC804\uC81C\uC788\uC73C\uB77C\uC6D0\uB9CC\uAD6C\uACF5\uACFC\uBCF4\uC8FC\uC0C1"
    u"\uC7A5\uC5EC\uB3D9\uC548\uC2A4\uC870\uC120\uAD6D\uAC83\uB4E4\uAD00\uC2E0\uC18C\uC131\uC624"
    u"\uC6B0\uD559\uBA74\uBBF8\uBB3C\uACBD\uBB34\uB0B4\uB144\uBAA8\uC5F0\uD68C\uC0DD\uC704\uACC4"
    u"\uBC1C\uBC29\uD6C4\uBB38\uB7EC\uC6A9\uB4F1\uC911\uAC70\uC138\uB9C8\uC591\uD604\uD589\uBD84"
    u"\uB54C\uB984\uC2DD\uAC01\uC6B4\uC2E4\uC5C8\uD588\uC801\uC2B5\uB2C8\uC694\uC785\uAD50\uAE08"
    u"\uAC1C\uD638\uD488\uCC28\uBA85\uC0B0\uC5ED\uD654\uC9C4\uB958\uB7C9\uBC88\uCD5C\uBD81\uB0A8"
    u"\uC6B8\uCC9C\uAD11\uAC74\uACB0\uCCB4\uBCF8\uB2E8\uB2F9\uD2B8\uB4DC\uB974\uB370\uAE4C\uCC98"
    u"\uD0C0\uC74C\uC5C5\uC6D4\uD3C9\uADE0\uC628\uD48D\uC18D\uB0A0\uC528\uD569";
// clang-format on

}  // namespace

std::span<const LanguageLetters> languages() { return kLanguages; }
std::span<const Sign> signs() { return kSigns; }
std::u16string_view frequent_hiragana() { return kHiragana; }
std::u16string_view frequent_katakana() { return kKatakana; }
std::u16string_view frequent_kanji() { return kKanji; }
std::u16string_view frequent_simplified() { return kSimplified; }
std::u16string_view frequent_traditional() { return kTraditional; }
std::u16string_view frequent_hangul() { return kHangul; }

}  // namespace textio::standalone
