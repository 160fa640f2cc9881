// A small test runner for the window tests. The project builds without moc,
// so Qt Test can't find test slots; this gives the same shape instead: named
// test functions, data tables with named rows, checks that stop the case and
// say where, and QTest's event functions (keyClick, mouseClick) as they are.
//
//   CT_TEST(normalStart) { CT_COMPARE(a, b); }
//
//   struct Row { const char* name; int language; const char* expected; };
//   CT_TEST_ROWS(helpFile, Row, {
//       {"German", 0, "CT0.fhp"},
//       {"English", 10000, "CT1.fhp"},
//   }) { CT_COMPARE(..., row.expected); }
//
//   CT_TEST_MAIN()
//
// Arguments select cases: "name" or "name:row". Output follows Qt Test's
// PASS / FAIL! lines; the exit code is the number of failures (at most 127).
#pragma once

#include <QApplication>
#include <QSize>
#include <QString>
#include <QStringList>
#include <functional>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace ct::test {

struct CheckFailed {
    std::string message;
    const char* file;
    int line;
};

void Register(const char* name, const char* row, std::function<void()> body);
int RunAll(int argc, char** argv);

template <class Row>
bool RegisterRows(const char* name, std::vector<Row> rows, void (*body)(const Row&)) {
    for (const Row& r : rows) Register(name, r.name, [r, body] { body(r); });
    return true;
}

// Text of a value for a failure message.
inline std::string Show(const QString& v) { return "\"" + v.toStdString() + "\""; }
inline std::string Show(const std::string& v) { return "\"" + v + "\""; }
inline std::string Show(const char* v) { return v ? "\"" + std::string(v) + "\"" : "(null)"; }
inline std::string Show(bool v) { return v ? "true" : "false"; }
inline std::string Show(const QSize& v) {
    return std::to_string(v.width()) + "x" + std::to_string(v.height());
}
inline std::string Show(const QStringList& v) {
    std::string s = "(";
    for (qsizetype i = 0; i < v.size(); ++i) s += (i ? ", " : "") + Show(v[i]);
    return s + ")";
}
template <class T>
std::string Show(const std::vector<T>& v) {
    std::string s = "[";
    for (std::size_t i = 0; i < v.size(); ++i) s += (i ? ", " : "") + Show(v[i]);
    return s + "]";
}
template <class T>
std::string Show(const T& v) {
    if constexpr (std::is_enum_v<T>) {
        return std::to_string(static_cast<long long>(v));
    } else if constexpr (requires(std::ostream& o) { o << v; }) {
        std::ostringstream out;
        out << v;
        return out.str();
    } else {
        return "(value)";
    }
}

// Compares what a caller sees: QString against a literal, std::string against
// a literal, numbers of different widths.
template <class A, class B>
bool Same(const A& a, const B& b) {
    if constexpr (std::is_same_v<A, QString> && std::is_convertible_v<B, const char*>)
        return a == QString::fromUtf8(b);
    else if constexpr (std::is_same_v<A, std::string> && std::is_convertible_v<B, const char*>)
        return a == std::string(b);
    else if constexpr (std::is_arithmetic_v<A> && std::is_arithmetic_v<B>)
        return static_cast<long double>(a) == static_cast<long double>(b);
    else
        return a == b;
}

}  // namespace ct::test

#define CT_VERIFY(cond)                                                                   \
    do {                                                                                  \
        if (!(cond)) throw ::ct::test::CheckFailed{"'" #cond "' is false", __FILE__, __LINE__}; \
    } while (0)

#define CT_VERIFY2(cond, text)                                                                        \
    do {                                                                                              \
        if (!(cond))                                                                                  \
            throw ::ct::test::CheckFailed{std::string("'" #cond "' is false: ") + (text), __FILE__, __LINE__}; \
    } while (0)

#define CT_COMPARE(actual, expected)                                                                  \
    do {                                                                                              \
        const auto& ct_a_ = (actual);                                                                 \
        const auto& ct_e_ = (expected);                                                               \
        if (!::ct::test::Same(ct_a_, ct_e_))                                                          \
            throw ::ct::test::CheckFailed{"Compared values are not the same\n   Actual   (" #actual "): " + \
                                              ::ct::test::Show(ct_a_) + "\n   Expected (" #expected "): " + \
                                              ::ct::test::Show(ct_e_),                                \
                                          __FILE__, __LINE__};                                        \
    } while (0)

#define CT_TEST(name)                                                                   \
    static void name();                                                                 \
    [[maybe_unused]] static const bool name##_registered_ = (::ct::test::Register(#name, nullptr, &name), true); \
    static void name()

#define CT_TEST_ROWS(name, RowType, ...)                                                 \
    static void name(const RowType& row);                                                \
    [[maybe_unused]] static const bool name##_registered_ =                              \
        ::ct::test::RegisterRows<RowType>(#name, std::vector<RowType> __VA_ARGS__, &name); \
    static void name([[maybe_unused]] const RowType& row)

#define CT_TEST_MAIN()                                                     \
    int main(int argc, char** argv) {                                      \
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))                 \
            qputenv("QT_QPA_PLATFORM", "offscreen");                       \
        QApplication app(argc, argv);                                      \
        return ::ct::test::RunAll(argc, argv);                             \
    }
