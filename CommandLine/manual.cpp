// SPDX-License-Identifier: MIT
// Writes the manual pages and the completions for shells, from the commands as the program offers them.
//
//   ostrel_manual FOLDER     writes ostrel.1, ostrel-COMMAND.1, ostrel.bash, _ostrel (zsh) and ostrel.fish
#include "CommandLine/command.h"
#include "CommandLine/outputs.h"
#include "CommandLine/suggestions.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

namespace {

using command::argument;
using command::definition;

bool is_option(const argument &what) {
    return what.name.starts_with("--");
}
bool is_flag(const argument &what) {
    return std::holds_alternative<bool *>(what.value);
}
bool is_many(const argument &what) {
    return std::holds_alternative<std::vector<std::string> *>(what.value);
}

// Manual pages.

/// A text as roff has it: nothing in it is an instruction.
std::string roff(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if ((c == '.' || c == '\'') && (result.empty() || result.back() == '\n'))
            result += "\\&";
        result += c == '\\' ? std::string("\\e") : c == '-' ? std::string("\\-") : std::string(1, c);
    }
    return result;
}

std::string upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return text;
}

void write_arguments(std::ostream &out, const std::vector<argument> &arguments, bool options) {
    for (const argument &one : arguments)
        if (is_option(one) == options)
            out << ".TP\n.B " << roff(one.name) << (options && !is_flag(one) ? " \\fIVALUE\\fR" : "") << '\n'
                << roff(one.meaning) << (one.required || options ? "" : " (may be left out)") << '\n';
}

/// The text at the end of a help; its examples get a heading of their own.
void write_notes(std::ostream &out, const std::string &notes, const char *examples = ".SH EXAMPLES") {
    std::istringstream lines(notes);
    bool filled = true;
    for (std::string line; std::getline(lines, line);) {
        if (line == "Examples:" || line == "Example:") {
            out << (filled ? "" : ".fi\n") << examples << "\n.nf\n";
            filled = false;
            continue;
        }
        const bool table = line.starts_with("  ");
        if (table && filled)
            out << ".nf\n";
        if (!table && !filled)
            out << ".fi\n";
        filled = !table;
        out << (line.empty() ? ".PP" : roff(line)) << '\n';
    }
    out << (filled ? "" : ".fi\n");
}

std::string heading(const std::string &name) {
    return ".TH " + upper(name) + " 1 \"\" \"ostrel " OSTREL_PACKAGE_VERSION "\" \"User Commands\"\n";
}

/// NAME: with that of the command to which a subcommand belongs.
std::string synopsis(const std::string &name, const definition &what) {
    std::string text = ".B " + roff("ostrel " + name) + "\n[\\fIOPTIONS\\fR]";
    if (!what.parts.empty())
        text += " \\fISUBCOMMAND\\fR";
    for (const argument &one : what.arguments)
        if (!is_option(one))
            text += (one.required ? " \\fI" : " [\\fI") + roff(one.name) + "\\fR" + (is_many(one) ? "..." : "") +
                    (one.required ? "" : "]");
    return text + '\n';
}

std::string page(const definition &what) {
    std::ostringstream out;
    out << heading("ostrel-" + what.name) << ".SH NAME\nostrel\\-" << what.name << " \\- " << roff(what.meaning)
        << "\n.SH SYNOPSIS\n"
        << synopsis(what.name, what);
    if (std::any_of(what.arguments.begin(), what.arguments.end(), [](const auto &one) { return !is_option(one); })) {
        out << ".SH ARGUMENTS\n";
        write_arguments(out, what.arguments, false);
    }
    if (std::any_of(what.arguments.begin(), what.arguments.end(), is_option)) {
        out << ".SH OPTIONS\n";
        write_arguments(out, what.arguments, true);
    }
    for (const definition &part : what.parts) {
        out << ".SH SUBCOMMAND " << upper(part.name) << '\n'
            << synopsis(what.name + ' ' + part.name, part) << ".PP\n"
            << roff(part.meaning) << ".\n";
        write_arguments(out, part.arguments, false);
        write_arguments(out, part.arguments, true);
        out << ".PP\n";
        write_notes(out, part.notes, ".PP\nExample:\n.br");
    }
    if (!what.notes.empty()) {
        if (!what.notes.starts_with("Example"))
            out << ".SH DESCRIPTION\n";
        write_notes(out, what.notes);
    }
    out << ".SH SEE ALSO\n.BR ostrel (1)\n";
    return out.str();
}

std::string main_page(const std::vector<definition> &commands) {
    std::ostringstream out;
    out << heading("ostrel") << ".SH NAME\nostrel \\- properties of pure fluids from equations of state\n"
        << ".SH SYNOPSIS\n.B ostrel\n[\\fIOPTIONS\\fR] \\fICOMMAND\\fR ...\n.SH DESCRIPTION\n"
        << roff(command::program_meaning) << "\n.SH OPTIONS\n.TP\n.B " << roff(command::fluids_option)
        << " \\fIFOLDER\\fR\n"
        << roff(command::fluids_meaning)
        << "\n.TP\n.B \\-\\-help\nPrint a help\n.TP\n.B \\-\\-version\nPrint the versions\n"
        << ".SH COMMANDS\n";
    for (const definition &one : commands)
        out << ".TP\n.BR ostrel\\-" << one.name << " (1)\n" << roff(one.meaning) << '\n';
    out << ".SH NOTES\n";
    write_notes(out, command::program_notes);
    out << ".SH ENVIRONMENT\n.TP\n.B OSTREL_FLUIDS\nFolder of the parameter files\n";
    return out.str();
}

// Completions. An argument is completed by what its name stands for.

/// The words that an argument or the value of an option may be; empty for files and free texts.
std::vector<std::string> words_of(const argument &what) {
    if (!what.choices.empty())
        return what.choices;
    if (what.name == "PAIR")
        return command::names_of(ostrel::list(ostrel::kind::inputs));
    if (what.name == "OUTPUT" || what.name == "--outputs")
        return command::names_of(ostrel::list(ostrel::kind::outputs));
    return {};
}
bool is_fluid(const argument &what) {
    return what.name == "FLUID" || what.name == "WORDS";
}

std::string bash_cases(const definition &what, const std::string &path) {
    std::ostringstream out;
    std::string options = "--help";
    std::string values;
    std::vector<std::string> positions;
    for (const argument &one : what.arguments) {
        const std::string words = command::joined(words_of(one), " ", " ");
        const std::string action = is_fluid(one)   ? "_ostrel_fluids"
                                   : words.empty() ? "_ostrel_files"
                                                   : "_ostrel_words '" + words + "'";
        if (!is_option(one)) {
            positions.push_back((is_many(one) ? "*) " : std::to_string(positions.size()) + ") ") + action + " ;;");
        } else {
            options += ' ' + one.name;
            if (!is_flag(one))
                values += "                " + one.name + ") " + action + "; return ;;\n";
        }
    }
    for (const definition &part : what.parts)
        options += ' ' + part.name;
    out << "        '" << path << "')\n            case $before in\n"
        << values << "            esac\n            case $word in\n                -*) _ostrel_words '" << options
        << "'; return ;;\n            esac\n";
    if (!what.parts.empty())
        out << "            _ostrel_words '" << options << "'\n";
    if (!positions.empty()) {
        out << "            case $place in\n";
        for (const std::string &one : positions)
            out << "                " << one << '\n';
        out << "            esac\n";
    }
    out << "            ;;\n";
    return out.str();
}

/// The options that take a value, of all commands: what stands behind one is no argument.
std::vector<std::string> options_with_values(const std::vector<definition> &commands) {
    std::vector<std::string> names = {command::fluids_option};
    for (const definition &one : commands)
        for (const argument &argument : one.arguments)
            if (is_option(argument) && !is_flag(argument) &&
                std::find(names.begin(), names.end(), argument.name) == names.end())
                names.push_back(argument.name);
    return names;
}

std::string bash(const std::vector<definition> &commands) {
    std::string names;
    std::string parents;
    std::ostringstream cases;
    for (const definition &one : commands) {
        names += one.name + ' ';
        cases << bash_cases(one, one.name);
        if (!one.parts.empty())
            parents += (parents.empty() ? "" : "|") + one.name;
        for (const definition &part : one.parts)
            cases << bash_cases(part, one.name + ' ' + part.name);
    }
    const std::string first_parent = parents.empty() ? "''" : parents;
    std::ostringstream out;
    out << "# Completion of the command ostrel for bash.\n"
           "_ostrel_words() { COMPREPLY=($(compgen -W \"$1\" -- \"$word\")); }\n"
           "_ostrel_files() { COMPREPLY=($(compgen -f -- \"$word\")); }\n"
           "_ostrel_fluids() { _ostrel_words \"$(ostrel \"${folder[@]}\" fluids --csv 2>/dev/null | "
           "sed '1d; s/,.*//')\"; }\n"
           "_ostrel() {\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} path= place=0 i folder=()\n"
           "    COMPREPLY=()\n"
           "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
           "        case ${COMP_WORDS[i]} in\n"
           "            "
        << command::fluids_option << ") folder=(" << command::fluids_option
        << " \"${COMP_WORDS[i+1]}\"); ((i++)) ;;\n            "
        << command::joined(options_with_values(commands), "|", "|")
        << ") ((i++)) ;;\n"
           "            -*) ;;\n"
           "            *)\n"
           "                case $path in\n"
           "                    '') path=${COMP_WORDS[i]} ;;\n"
           "                    "
        << first_parent
        << ") path+=\" ${COMP_WORDS[i]}\" ;;\n"
           "                    *) ((place++)) ;;\n"
           "                esac ;;\n"
           "        esac\n"
           "    done\n"
           "    case $before in "
        << command::fluids_option
        << ") COMPREPLY=($(compgen -d -- \"$word\")); return ;; esac\n"
           "    case $path in\n"
           "        '') _ostrel_words '"
        << names << command::fluids_option << " --help --version' ;;\n"
        << cases.str()
        << "    esac\n"
           "}\n"
           "complete -o filenames -F _ostrel ostrel\n";
    return out.str();
}

/// zsh understands the completion of bash.
std::string zsh(const std::vector<definition> &commands) {
    return "#compdef ostrel\n# Completion of the command ostrel for zsh, by that for bash.\n"
           "autoload -U +X bashcompinit && bashcompinit\n" +
           bash(commands);
}

std::string in_quotes(std::string_view text) {
    std::string result = "'";
    for (const char c : text)
        result += c == '\'' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    return result + '\'';
}

std::string fish(const std::vector<definition> &commands) {
    std::ostringstream out;
    out << "# Completion of the command ostrel for fish.\n"
           "complete -c ostrel -n __fish_use_subcommand -f\n"
           "complete -c ostrel -n __fish_use_subcommand -l help -d 'Print a help'\n"
           "complete -c ostrel -n __fish_use_subcommand -l version -d 'Print the versions'\n"
           "complete -c ostrel -l "
        << std::string_view(command::fluids_option).substr(2) << " -r -d " << in_quotes(command::fluids_meaning)
        << '\n';
    for (const definition &one : commands) {
        out << "complete -c ostrel -n __fish_use_subcommand -f -a " << one.name << " -d " << in_quotes(one.meaning)
            << '\n';
        const std::string inside = "complete -c ostrel -n '__fish_seen_subcommand_from " + one.name + "'";
        for (const definition &part : one.parts)
            out << inside << " -f -a " << part.name << " -d " << in_quotes(part.meaning) << '\n';
        for (const argument &argument : one.arguments) {
            const std::string words = command::joined(words_of(argument), " ", " ");
            if (is_option(argument))
                out << inside << " -l " << argument.name.substr(2) << (is_flag(argument) ? "" : " -r")
                    << (words.empty() ? "" : " -f -a " + in_quotes(words)) << " -d " << in_quotes(argument.meaning)
                    << '\n';
            else if (is_fluid(argument))
                out << inside << " -f -a \"(ostrel fluids --csv 2>/dev/null | sed '1d; s/,.*//')\"\n";
            else if (!words.empty())
                out << inside << " -f -a " << in_quotes(words) << '\n';
        }
    }
    return out.str();
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::cerr << "ostrel_manual FOLDER\n";
        return command::wrong_usage;
    }
    const std::filesystem::path folder(argv[1]);
    std::filesystem::create_directories(folder);
    bool written = true;
    const auto write = [&](const std::string &name, const std::string &text) {
        std::ofstream file(folder / name, std::ios::binary);
        file << text;
        file.close();
        written = written && file;
    };
    const std::vector<definition> commands = command::all();
    write("ostrel.1", main_page(commands));
    for (const definition &one : commands)
        write("ostrel-" + one.name + ".1", page(one));
    write("ostrel.bash", bash(commands));
    write("_ostrel", zsh(commands));
    write("ostrel.fish", fish(commands));
    return written ? 0 : command::failed;
}
