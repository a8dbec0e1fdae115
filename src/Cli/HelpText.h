#pragma once

#include <CLI/CLI.hpp>

#include <string>

/// What --help prints: the options in their groups, one line each, in 80 columns.
class HelpText : public CLI::FormatterBase
{
public:
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
};
