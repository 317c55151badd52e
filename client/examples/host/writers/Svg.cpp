#include "writers/Svg.h"

#include "writers/Text.h"

#include <algorithm>
#include <cmath>

namespace host {

void appendCoordinate(std::string& out, double value)
{
    appendFixed(out, value, 1);
}

void appendAttribute(std::string& out, const char* name, double value)
{
    out += ' ';
    out += name;
    out += "=\"";
    appendCoordinate(out, value);
    out += '"';
}

void appendPlace(std::string& out, char command, Place place)
{
    out += command;
    appendCoordinate(out, place.x);
    out += ' ';
    appendCoordinate(out, place.y);
}

std::string colourClass(std::size_t index)
{
    return "k" + std::to_string(index % COLOURS);
}

void appendLabel(std::string& out, Place place, const char* kind, const std::string& text)
{
    out += "<text class=\"";
    out += kind;
    out += '"';
    appendAttribute(out, "x", place.x);
    appendAttribute(out, "y", place.y);
    out += '>';
    appendHtml(out, text);
    out += "</text>";
}

void appendBox(std::string& out, const std::string& classes, Place corner, double width, double height)
{
    out += "<rect class=\"" + classes + "\"";
    appendAttribute(out, "x", corner.x);
    appendAttribute(out, "y", corner.y);
    appendAttribute(out, "width", std::max(width, 0.0));
    appendAttribute(out, "height", height);
}

void appendTip(std::string& out, const std::string& text)
{
    out += "<title>";
    appendHtml(out, text);
    out += "</title>";
}

std::string shortened(const std::string& name, std::size_t mostCharacters)
{
    std::size_t count = 0;
    for (std::size_t at = name.size(); at > 0;) {
        --at;
        if ((static_cast<unsigned char>(name[at]) & 0xC0U) == 0x80U) continue;
        if (++count == mostCharacters && at > 0) return "\xE2\x80\xA6" + name.substr(at);
    }
    return name;
}

std::string rounded(double value)
{
    std::string text;
    appendRounded(text, value);
    return text;
}

std::string withUnit(double value, const std::string& unit)
{
    return rounded(value) + (unit.empty() ? "" : " " + unit);
}

std::string percent(double share)
{
    std::string text;
    appendFixed(text, share * 100, 1);
    return text + " %";
}

void beginChart(std::string& out, const ChartHead& head, const char* kind, double height)
{
    out += "<figure class=\"chart\"><figcaption><h3>";
    appendHtml(out, head.title);
    out += "</h3>";
    if (!head.note.empty()) {
        out += "<p>";
        appendHtml(out, head.note);
        out += "</p>";
    }
    out += "</figcaption><div class=\"plot\"><svg class=\"";
    out += kind;
    out += "\" role=\"img\" viewBox=\"0 0 960 ";
    appendCoordinate(out, height);
    out += "\" aria-label=\"";
    appendHtml(out, head.title);
    out += '"';
}

void appendLegend(std::string& out, const std::vector<LegendItem>& items)
{
    out += "<ul class=\"legend\">";
    for (std::size_t i = 0; i < items.size(); ++i) {
        out += "<li><i class=\"" + colourClass(i) + "\"></i><span>";
        appendHtml(out, items[i].name);
        out += "</span> <small>";
        appendHtml(out, items[i].text);
        out += "</small></li>";
    }
    out += "</ul>";
}

void appendRounded(std::string& out, double value)
{
    const double size = std::abs(value);
    if (size >= 1e7 || (size > 0 && size < 1e-3)) {
        appendGeneral(out, value, 4);
    } else {
        appendFixed(out, value, size >= 1000 || value == std::floor(value) ? 0 : size >= 100 ? 1 : 2);
    }
}

std::vector<std::string> withoutSharedPath(std::vector<std::string> names)
{
    const auto isShared = [&names](const std::string& part) {
        return std::all_of(names.begin(), names.end(),
                           [&part](const std::string& name) { return name.starts_with(part); });
    };
    for (;;) {
        const std::size_t slash = names.empty() ? std::string::npos : names.front().find('/');
        if (names.size() < 2 || slash == std::string::npos || !isShared(names.front().substr(0, slash + 1)))
            return names;
        for (std::string& name : names)
            name.erase(0, slash + 1);
    }
}

}    // namespace host
