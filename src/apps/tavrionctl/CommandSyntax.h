// What a command accepts on the command line: its name, its options, and where their values go.
//
// Queue: the main thread. Who owns: CommandLineSyntax all of it; the others are handles into it.
// What an option's value goes into must live until the command line is parsed.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tavrion::ctl {

/// One option or positional argument.
class OptionSyntax {
  public:
    explicit OptionSyntax(CLI::Option* option) : option_(option) {}

    const OptionSyntax& required() const;
    /// Refuses every other value.
    const OptionSyntax& oneOf(const std::vector<std::string>& values) const;
    /// Both together are refused.
    const OptionSyntax& excludes(const OptionSyntax& other) const;
    /// What help calls the value, in place of its type.
    const OptionSyntax& valueName(const std::string& name) const;

  private:
    CLI::Option* option_;
};

/// One command, a group of commands, or the program. A name that begins with dashes is that of an
/// option, any other that of a positional argument.
class CommandSyntax {
  public:
    /// Says what is wrong with a value, nothing when it was taken.
    using Taker = std::function<std::optional<std::string>(const std::string& text)>;

    CommandSyntax() = default;
    explicit CommandSyntax(CLI::App* app) : app_(app) {}

    OptionSyntax flag(const std::string& name, bool& value, const std::string& help) const;
    /// Stays as it is where the option is left out.
    OptionSyntax text(const std::string& name, std::string& value, const std::string& help) const;
    OptionSyntax text(const std::string& name, std::optional<std::string>& value,
                      const std::string& help) const;
    OptionSyntax number(const std::string& name, std::optional<std::int64_t>& value,
                        const std::string& help) const;
    /// As many values as are given.
    OptionSyntax texts(const std::string& name, std::vector<std::string>& values,
                       const std::string& help) const;
    OptionSyntax taken(const std::string& name, Taker take, const std::string& help) const;
    /// All words behind the command are its own, also those that look like options.
    void takesAllWords() const;
    std::vector<std::string> allWords() const;

    /// A command below this one.
    CommandSyntax command(const std::string& name, const std::string& help) const;
    /// It is nothing without one of its commands.
    void wantsCommand() const;
    /// Whether the command line names it. After parsing.
    bool isChosen() const;

  private:
    CLI::App* app_ = nullptr;
};

/// The whole command line.
class CommandLineSyntax {
  public:
    CommandLineSyntax(const std::string& program, const std::string& help,
                      const std::string& version);
    ~CommandLineSyntax();

    CommandSyntax program() const { return CommandSyntax(app_.get()); }

    struct Parsed {
        /// Help or the version was asked for and is printed.
        bool isAnswered = false;
        /// What is wrong with the command line; absent when nothing is.
        std::optional<std::string> fault;
    };
    Parsed parse(int argumentCount, const char* const* arguments);

  private:
    std::unique_ptr<CLI::App> app_;
};

}  // namespace tavrion::ctl
