#include "apps/tavrionctl/CommandSyntax.h"

// The library takes ten seconds to compile and is included nowhere else.
#include <CLI/CLI.hpp>

namespace tavrion::ctl {

const OptionSyntax& OptionSyntax::required() const {
    option_->required();
    return *this;
}

const OptionSyntax& OptionSyntax::oneOf(const std::vector<std::string>& values) const {
    option_->check(CLI::IsMember(values));
    return *this;
}

const OptionSyntax& OptionSyntax::excludes(const OptionSyntax& other) const {
    option_->excludes(other.option_);
    return *this;
}

const OptionSyntax& OptionSyntax::valueName(const std::string& name) const {
    option_->type_name(name);
    return *this;
}

OptionSyntax CommandSyntax::flag(const std::string& name, bool& value,
                                 const std::string& help) const {
    return OptionSyntax(app_->add_flag(name, value, help));
}

OptionSyntax CommandSyntax::text(const std::string& name, std::string& value,
                                 const std::string& help) const {
    return OptionSyntax(app_->add_option(name, value, help));
}

OptionSyntax CommandSyntax::text(const std::string& name, std::optional<std::string>& value,
                                 const std::string& help) const {
    return OptionSyntax(app_->add_option(name, value, help));
}

OptionSyntax CommandSyntax::number(const std::string& name, std::optional<std::int64_t>& value,
                                   const std::string& help) const {
    return OptionSyntax(app_->add_option(name, value, help));
}

OptionSyntax CommandSyntax::texts(const std::string& name, std::vector<std::string>& values,
                                  const std::string& help) const {
    return OptionSyntax(app_->add_option(name, values, help));
}

OptionSyntax CommandSyntax::taken(const std::string& name, Taker take,
                                  const std::string& help) const {
    return OptionSyntax(app_->add_option_function<std::string>(
        name,
        [name, take = std::move(take)](const std::string& text) {
            if (const std::optional<std::string> fault = take(text)) {
                throw CLI::ValidationError(name, *fault);
            }
        },
        help));
}

void CommandSyntax::takesAllWords() const {
    app_->fallthrough(false);
    app_->prefix_command();
}

std::vector<std::string> CommandSyntax::allWords() const {
    return app_->remaining();
}

CommandSyntax CommandSyntax::command(const std::string& name, const std::string& help) const {
    return CommandSyntax(app_->add_subcommand(name, help));
}

void CommandSyntax::wantsCommand() const {
    app_->require_subcommand(1);
}

bool CommandSyntax::isChosen() const {
    return app_ != nullptr && app_->parsed();
}

CommandLineSyntax::CommandLineSyntax(const std::string& program, const std::string& help,
                                     const std::string& version)
    : app_(std::make_unique<CLI::App>(help, program)) {
    // Options of the program are known behind a command, too.
    app_->fallthrough();
    app_->set_version_flag("--version", version);
}

CommandLineSyntax::~CommandLineSyntax() = default;

CommandLineSyntax::Parsed CommandLineSyntax::parse(int argumentCount,
                                                   const char* const* arguments) {
    try {
        app_->parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            app_->exit(error);
            return {true, {}};
        }
        return {false, error.what()};
    }
    return {};
}

}  // namespace tavrion::ctl
