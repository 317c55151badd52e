#pragma once

#include "runtime/Export.h"

#include <string>

namespace pwr {

class Data;

// Renders a Data as text for result files. A value or a table field can carry its own; else the default of its type
// renders it. Formatters are immutable after construction and usable from any thread.
//
//   std::string text;
//   RealFormatter(0, 2).format(text, Data(3.14159));    // "3.14"
//
// All operations return 0, or 1 when the value can't be rendered (unset, invalid, of another type).
class QUORVANE_API Formatter {
public:
    virtual ~Formatter();

    // Puts the finished text into `out`.
    virtual int format(std::string& out, const Data& value) const = 0;
    virtual Formatter* clone() const = 0;    // the caller owns the copy

    // Right-justifies `text` with blanks to at least `width` characters. Returns 0.
    static int widen(std::string& text, int width);

    // The rendering of each type. The scalar forms hand ranges over to the range forms, which read "1 -- 5". `out` is
    // emptied first; on failure it stays empty. The suffix comes directly behind the number, then the width counts.
    static int formatInt(const Formatter& formatter, std::string& out, const Data& value);
    static int formatUInt(const Formatter& formatter, std::string& out, const Data& value);
    static int formatReal(const Formatter& formatter, std::string& out, const Data& value);
    static int formatIntRange(const Formatter& formatter, std::string& out, const Data& value);
    static int formatUIntRange(const Formatter& formatter, std::string& out, const Data& value);
    static int formatRealRange(const Formatter& formatter, std::string& out, const Data& value);

    // A process or thread renders as its id, a name-value pair as "value - name", any other handle as its qualified
    // name; no suffix. A handle that doesn't resolve leaves `out` unchanged.
    static int formatHandle(const Formatter& formatter, std::string& out, const Data& value);
    static int formatString(const Formatter& formatter, std::string& out, const Data& value);

protected:
    explicit Formatter(int width);
    Formatter(const Formatter&) = default;
    Formatter& operator=(const Formatter&) = default;

    std::string m_suffix;    // behind numbers
    bool m_hex = false;      // integers with their base: 0xff
    int m_width = 0;         // least width of the finished text, 0: none
    int m_precision = 1;     // digits behind the point; negative: as many as a stream writes then

private:
    int finishNumber_i(std::string& out) const;    // suffix, then width
};

// Warns and renders "INVALID": a Data of type NONE has no text.
class QUORVANE_API VoidFormatter : public Formatter {
public:
    VoidFormatter();
    int format(std::string& out, const Data& value) const override;
    Formatter* clone() const override;
};

class QUORVANE_API IntFormatter : public Formatter {
public:
    explicit IntFormatter(int width = 0, bool hex = false);
    IntFormatter(const std::string& suffix, int width, bool hex);
    int format(std::string& out, const Data& value) const override;
    Formatter* clone() const override;
};

class QUORVANE_API UIntFormatter : public Formatter {
public:
    explicit UIntFormatter(int width = 0, bool hex = false);
    UIntFormatter(const std::string& suffix, int width, bool hex);
    int format(std::string& out, const Data& value) const override;
    Formatter* clone() const override;
};

class QUORVANE_API RealFormatter : public Formatter {
public:
    explicit RealFormatter(int width = 0, int precision = 1);
    RealFormatter(const std::string& suffix, int width, int precision);
    int format(std::string& out, const Data& value) const override;
    Formatter* clone() const override;
};

class QUORVANE_API StringFormatter : public Formatter {
public:
    explicit StringFormatter(int width = 0);
    int format(std::string& out, const Data& value) const override;
    Formatter* clone() const override;
};

class QUORVANE_API HandleFormatter : public Formatter {
public:
    explicit HandleFormatter(int width = 0);
    int format(std::string& out, const Data& value) const override;
    Formatter* clone() const override;
};

}    // namespace pwr
