#include <orlix/Manual.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace orlix::app
{

namespace
{

/// The verbs, but for those that have no name of their own.
std::vector<const CLI::App*> listVerbs(const CLI::App& app)
{
    return app.get_subcommands([](const CLI::App* verb) { return !verb->get_name().empty(); });
}

/// Options that begin with a dash.
std::vector<const CLI::Option*> listOptions(const CLI::App& verb)
{
    return verb.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

/// The first line of a description.
std::string summarise(const CLI::App& verb)
{
    const std::string text = verb.get_description();
    return text.substr(0, text.find('\n'));
}

/// The words that an option takes, where it takes one of several: its type is "a|b|c".
std::vector<std::string> listChoices(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    return type.find('|') == std::string::npos ? std::vector<std::string>{} : CLI::detail::split(type, '|');
}

std::string join(const std::vector<std::string>& words, const std::string& separator = " ")
{
    return CLI::detail::join(words, separator);
}

/// The names of an option, with their dashes.
std::vector<std::string> listNames(const CLI::Option& option)
{
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) {
        names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        names.push_back("--" + name);
    }
    return names;
}

std::string replaceAll(std::string text, const std::string& what, const std::string& by)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

/// Text between single quotes of a shell.
std::string quote(const std::string& text)
{
    return "'" + replaceAll(text, "'", "'\\''") + "'";
}

std::string completeBash(const CLI::App& app)
{
    std::vector<std::string> verbs;
    std::string cases;
    std::string choices;
    for (const CLI::App* const verb : listVerbs(app)) {
        verbs.push_back(verb->get_name());
        std::vector<std::string> names;
        for (const CLI::Option* const option : listOptions(*verb)) {
            const auto own = listNames(*option);
            names.insert(names.end(), own.begin(), own.end());
            if (const auto words = listChoices(*option); !words.empty()) {
                choices += "        " + verb->get_name() + ":" + own.back() + ") words='" + join(words) + "' ;;\n";
            }
        }
        cases += "        " + verb->get_name() + ") words='" + join(names) + "' ;;\n";
    }
    return "_orlix() {\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} verb=${COMP_WORDS[1]} words=\n"
           "    COMPREPLY=()\n"
           "    if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
           "        words='" +
           join(verbs) +
           " --help --version'\n"
           "    else\n"
           "        case $verb:${COMP_WORDS[COMP_CWORD-1]} in\n" +
           choices +
           "        esac\n"
           "        if [ -z \"$words\" ] && [ \"${word:0:1}\" = - ]; then\n"
           "            case $verb in\n" +
           cases +
           "            esac\n"
           "        fi\n"
           "    fi\n"
           "    [ -z \"$words\" ] || COMPREPLY=($(compgen -W \"$words\" -- \"$word\"))\n"
           "}\n"
           "complete -o default -F _orlix orlix\n";
}

std::string completeZsh(const CLI::App& app)
{
    std::string verbs;
    std::string cases;
    const auto describe = [](const std::string& text) { return replaceAll(replaceAll(text, "[", "("), "]", ")"); };
    for (const CLI::App* const verb : listVerbs(app)) {
        verbs += "        " + quote(verb->get_name() + ":" + summarise(*verb)) + "\n";
        cases += "    " + verb->get_name() + ")\n        _arguments \\\n";
        for (const CLI::Option* const option : listOptions(*verb)) {
            for (const std::string& name : listNames(*option)) {
                std::string spec = name + "[" + describe(option->get_description()) + "]";
                if (const auto choices = listChoices(*option); !choices.empty()) {
                    spec += ":word:(" + join(choices) + ")";
                } else if (option->get_expected_max() > 0) {
                    spec += ":" + describe(option->get_type_name()) + ":_files";
                }
                cases += "            " + quote(spec) + " \\\n";
            }
        }
        cases += "            '*:file:_files' ;;\n";
    }
    return "#compdef orlix\n"
           "local -a verbs=(\n" +
           verbs +
           ")\n"
           "if (( CURRENT == 2 )); then\n"
           "    _describe verb verbs\n"
           "    return\n"
           "fi\n"
           "case $words[2] in\n" +
           cases + "esac\n";
}

std::string completeFish(const CLI::App& app)
{
    std::string lines;
    for (const CLI::App* const verb : listVerbs(app)) {
        lines += "complete -c orlix -n __fish_use_subcommand -a " + verb->get_name() + " -d " +
                 quote(summarise(*verb)) + "\n";
        for (const CLI::Option* const option : listOptions(*verb)) {
            lines += "complete -c orlix -n '__fish_seen_subcommand_from " + verb->get_name() + "'";
            for (const std::string& name : option->get_snames()) {
                lines += " -s " + name;
            }
            for (const std::string& name : option->get_lnames()) {
                lines += " -l " + name;
            }
            if (const auto choices = listChoices(*option); !choices.empty()) {
                lines += " -x -a " + quote(join(choices));
            } else if (option->get_expected_max() > 0) {
                lines += " -r";
            }
            lines += " -d " + quote(option->get_description()) + "\n";
        }
    }
    return lines;
}

/// Text that roff prints as it stands.
std::string escape(const std::string& text)
{
    std::string escaped = replaceAll(replaceAll(text, "\\", "\\e"), "-", "\\-");
    return replaceAll(replaceAll(escaped, "\n.", "\n\\&."), "\n'", "\n\\&'");
}

} // namespace

std::string writeManual(const CLI::App& app)
{
    std::string page = ".TH ORLIX 1\n.SH NAME\norlix \\- global measures of 2d and 3d images\n"
                       ".SH SYNOPSIS\n.B orlix\n.I VERB\n[\\fIOPTIONS\\fR] \\fIIMAGE\\fR...\n.SH DESCRIPTION\n.nf\n" +
                       escape(app.get_description()) + "\n.fi\n.SH VERBS\n";
    for (const CLI::App* const verb : listVerbs(app)) {
        page += ".SS " + escape(verb->get_name()) + "\n.nf\n" + escape(verb->get_description()) + "\n.fi\n";
        if (!verb->get_footer().empty()) {
            page += ".PP\n" + escape(verb->get_footer()) + "\n";
        }
        for (const CLI::Option* const option : listOptions(*verb)) {
            if (option->get_name() == "--help") {
                continue;
            }
            page += ".TP\n\\fB" + escape(join(listNames(*option), ", ")) + "\\fR";
            page += option->get_expected_max() > 0 ? " \\fI" + escape(option->get_type_name()) + "\\fR\n" : "\n";
            page += escape(option->get_description()) + "\n";
        }
    }
    return page + ".SH EXIT STATUS\n0: success. 1: a measure or a file failed. 2: wrong usage.\n";
}

std::string writeCompletion(const CLI::App& app, const std::string& shell)
{
    return shell == "bash" ? completeBash(app) : shell == "zsh" ? completeZsh(app) : completeFish(app);
}

} // namespace orlix::app
