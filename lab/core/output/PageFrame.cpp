#include "lab/core/output/PageFrame.h"

#include "lab/core/output/PageTexts.h"
#include "lab/core/output/Texts.h"

#include <initializer_list>

namespace lab {

namespace {

std::string joined(std::initializer_list<std::string_view> parts)
{
    std::string text;
    for (const std::string_view part : parts)
        text += part;
    return text;
}

} // namespace

std::string pageSection(std::string_view id, std::string_view title, std::string_view body)
{
    return joined({"<section id=\"", id, "\">\n<h2>", escaped(title), "</h2>\n", body, "\n</section>\n"});
}

std::string chartPlace(std::string_view id, std::string_view label, const std::vector<CurveName>& curves)
{
    std::string html;
    if (!curves.empty()) {
        html += "<ul class=\"key\">";
        for (const CurveName& curve : curves)
            html += joined(
                {"<li><i style=\"background:var(", curve.colour, ")\"></i>", escaped(curve.name), "</li>"});
        html += "</ul>\n";
    }
    return html
        + joined({"<div class=\"chart\" id=\"", id, "\" role=\"img\" aria-label=\"", escaped(label),
            "\"></div>\n<p class=\"readout\"></p>"});
}

std::string pageFrame(
    std::string_view title, std::string_view header, std::string_view body, std::string_view data)
{
    // The policy is a second wall behind the escaping: no address is ever loaded, and of scripts only these
    // run.
    return joined(
        {"<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
         "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
         "style-src 'unsafe-inline'; script-src 'nonce-lab'; base-uri 'none'; form-action 'none'\">\n"
         "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>",
            escaped(title), "</title>\n<style>\n", chartLibraryStyle, "\n", pageStyle,
            "</style>\n</head>\n<body>\n<header>\n", header, "</header>\n<main>\n", body,
            "</main>\n<script type=\"application/json\" id=\"data\">", data,
            "</script>\n<script nonce=\"lab\">\n", chartLibrary, "</script>\n<script nonce=\"lab\">\n",
            pageScript, "</script>\n</body>\n</html>\n"});
}

} // namespace lab
