#pragma once

#include <CLI/CLI.hpp>

#include <string>

/// The text of --help: options in groups, wrapped to 80 columns. The groups and their order are those of the manual
/// page.
class HelpText : public CLI::FormatterBase
{
public:
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
};
