// Completion scripts for bash, zsh and fish.
#include "effectengine/commandPages.h"

namespace tool {

namespace {

// What a shell offers for the value of an option.
enum class Completes { nothing, files, effects, parameters, families, choices };

Completes kindOf(const OptionText& option)
{
    if (!option.choices.empty())
        return Completes::choices;
    if (option.value == "FAMILY")
        return Completes::families;
    if (option.value == "EFFECT" || option.names[0] == "EFFECT" || option.names[0] == "EFFECTS")
        return Completes::effects;
    if (option.names.back() == "--param")
        return Completes::parameters;
    if (option.positional || option.value == "FILE" || option.value == "DIR" || option.value == "CLIP")
        return Completes::files;
    return Completes::nothing;
}

std::string joined(const std::vector<std::string>& words, const char* between)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : between) + word;
    return text;
}

std::vector<std::string> optionNames(const VerbText& verb)
{
    std::vector<std::string> names;
    for (const OptionText& option : verb.options) {
        if (!option.positional)
            names.insert(names.end(), option.names.begin(), option.names.end());
    }
    return names;
}

std::vector<std::string> verbNames(const VerbText& verb)
{
    std::vector<std::string> names;
    for (const VerbText& inner : verb.verbs)
        names.push_back(inner.name);
    return names;
}

bool takesEffects(const VerbText& verb)
{
    for (const OptionText& option : verb.options) {
        if (option.positional && (kindOf(option) == Completes::effects || option.names[0] == "WORDS"))
            return true;
    }
    return false;
}

// The choices for a word that is no option: those of an argument that has some, else the inner verbs.
std::vector<std::string> wordChoices(const VerbText& verb)
{
    for (const OptionText& option : verb.options) {
        if (option.positional && !option.choices.empty())
            return option.choices;
    }
    return verbNames(verb);
}

std::string bashValues(const OptionText& option)
{
    switch (kindOf(option)) {
    case Completes::choices:
        return "_effectengine_words \"" + joined(option.choices, " ") + "\"";
    case Completes::effects:
        return "_effectengine_words \"$(effectengine list --names 2>/dev/null)\"";
    case Completes::families:
        return "_effectengine_words \"$(effectengine list --families 2>/dev/null)\"";
    case Completes::parameters:
        return "_effectengine_parameters";
    case Completes::files:
        return "_effectengine_files";
    case Completes::nothing:
        break;
    }
    return ":";
}

std::string bashVerb(const VerbText& verb)
{
    std::string text = "    " + verb.name + ")\n        case $prev in\n";
    for (const OptionText& option : verb.options) {
        if (!option.positional && !option.value.empty())
            text += "        " + joined(option.names, " | ") + ") " + bashValues(option) + "; return ;;\n";
    }
    text += "        esac\n        if [[ $cur == -* ]]; then\n            _effectengine_words \""
        + joined(optionNames(verb), " ") + "\"\n        else\n            ";
    if (!wordChoices(verb).empty())
        text += "_effectengine_words \"" + joined(wordChoices(verb), " ")
            + "\"\n            _effectengine_files more";
    else if (takesEffects(verb))
        text += "_effectengine_words \"$(effectengine list --names 2>/dev/null)\"\n            "
                "_effectengine_files more";
    else
        text += "_effectengine_files";
    return text + "\n        fi\n        ;;\n";
}

// The text with a backslash before each special character, for double quotes of fish and [...] of zsh. Help
// texts hold nothing that would need more.
std::string escapedFor(const std::string& text, const std::string& special)
{
    std::string escaped;
    for (const char c : text) {
        if (special.find(c) != std::string::npos)
            escaped += '\\';
        escaped += c;
    }
    return escaped;
}

// The text between single quotes, as all three shells read it.
std::string singleQuoted(const std::string& text)
{
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::string zshAction(const OptionText& option)
{
    switch (kindOf(option)) {
    case Completes::choices:
        return "(" + joined(option.choices, " ") + ")";
    case Completes::effects:
        return "_effectengine_effects";
    case Completes::families:
        return "_effectengine_families";
    case Completes::parameters:
        return "_effectengine_parameters";
    case Completes::files:
        return "_files";
    case Completes::nothing:
        break;
    }
    return " ";
}

std::string zshOptions(const VerbText& verb, const std::string& indent)
{
    std::string text;
    bool words = false;
    for (const OptionText& option : verb.options) {
        if (option.positional) {
            words = true;
            continue;
        }
        const std::string help = "[" + escapedFor(option.help, "[]:\\") + "]";
        const std::string value =
            option.value.empty() ? "" : ":" + escapedFor(option.value, ":") + ":" + zshAction(option);
        for (const std::string& name : option.names)
            text += " \\\n" + indent + singleQuoted((option.repeats ? "*" : "") + name + help + value);
    }
    if (words && !wordChoices(verb).empty())
        text += " \\\n" + indent + singleQuoted("1:word:(" + joined(wordChoices(verb), " ") + ")");
    else if (words)
        text += " \\\n" + indent
            + singleQuoted(takesEffects(verb) ? "*:word:_effectengine_effects_or_files" : "*:file:_files");
    return text;
}

std::string zshVerbs(const VerbText& verb)
{
    std::string text = "(";
    for (const VerbText& inner : verb.verbs)
        text += singleQuoted(inner.name + ":" + escapedFor(inner.help, ":")) + " ";
    return text + ")";
}

std::string fishOption(const OptionText& option, const std::string& condition)
{
    std::string text = "complete -c effectengine -n " + singleQuoted(condition);
    for (const std::string& name : option.names)
        text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    switch (kindOf(option)) {
    case Completes::choices:
        text += " -x -a " + singleQuoted(joined(option.choices, " "));
        break;
    case Completes::effects:
        text += " -x -a '(effectengine list --names)'";
        break;
    case Completes::families:
        text += " -x -a '(effectengine list --families)'";
        break;
    case Completes::parameters:
        text += " -x -a '(__effectengine_parameters)'";
        break;
    case Completes::files:
        text += " -r -F";
        break;
    case Completes::nothing:
        text += option.value.empty() ? "" : " -x";
        break;
    }
    return text + " -d " + singleQuoted(option.help) + "\n";
}

} // namespace

std::string bashCompletion(const VerbText& tool)
{
    std::string text = R"sh(# bash completion for effectengine
_effectengine_words() {
    local IFS=$' \t\n'
    COMPREPLY=($(compgen -W "$1" -- "$cur"))
}
_effectengine_files() {
    local IFS=$'\n'
    [ "${1-}" = more ] || COMPREPLY=()
    COMPREPLY+=($(compgen -f -- "$cur"))
    compopt -o filenames 2>/dev/null
}
# Parameters of the last -e, or of the effect that stands after the verb.
_effectengine_parameters() {
    local i effect=
    for ((i = COMP_CWORD - 1; i > 1; i--)); do
        case ${COMP_WORDS[i - 1]} in
        -e | --effect) effect=${COMP_WORDS[i]}; break ;;
        esac
    done
    [ -n "$effect" ] || effect=${COMP_WORDS[verbAt + 1]}
    _effectengine_words "$(effectengine describe --names "$effect" 2>/dev/null | sed 's/$/=/')"
    compopt -o nospace 2>/dev/null
}
_effectengine() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} verb= verbAt=0 i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
)sh";
    std::vector<std::string> valued;
    for (const OptionText& option : tool.options) {
        if (!option.value.empty())
            valued.insert(valued.end(), option.names.begin(), option.names.end());
    }
    text += "        " + joined(valued, " | ") + ") ((i++)) ;;\n" + R"sh(        -*) ;;
        *) verb=${COMP_WORDS[i]} verbAt=$i; break ;;
        esac
    done
    case $verb in
    '')
)sh" + "        case $prev in\n        "
        + joined(valued, " | ")
        + ") _effectengine_files; return ;;\n        esac\n        _effectengine_words \""
        + joined(verbNames(tool), " ") + " " + joined(optionNames(tool), " ") + "\"\n        ;;\n";
    for (const VerbText& verb : tool.verbs)
        text += bashVerb(verb);
    return text + "    esac\n}\ncomplete -F _effectengine effectengine\n";
}

std::string zshCompletion(const VerbText& tool)
{
    std::string text = R"sh(#compdef effectengine
_effectengine_effects() { compadd -- ${(f)"$(effectengine list --names 2>/dev/null)"} }
_effectengine_families() { compadd -- ${(f)"$(effectengine list --families 2>/dev/null)"} }
_effectengine_effects_or_files() { _effectengine_effects; _files }
# Parameters of the last -e, or of the effect that stands after the verb.
_effectengine_parameters() {
    local i effect=$words[2]
    for ((i = CURRENT - 1; i > 1; i--)); do
        if [[ ${words[i-1]} == (-e|--effect) ]]; then effect=${words[i]}; break; fi
    done
    compadd -S = -- ${(f)"$(effectengine describe --names "$effect" 2>/dev/null)"}
}
_effectengine() {
    local curcontext=$curcontext state line
    typeset -A opt_args
)sh";
    text += "    local -a verbs=" + zshVerbs(tool) + "\n    _arguments -C" + zshOptions(tool, "        ")
        + " \\\n        '1:verb:->verb' '*::word:->words'\n";
    text += "    case $state in\n    verb) _describe verb verbs ;;\n    words)\n        case $line[1] in\n";
    for (const VerbText& verb : tool.verbs) {
        text += "        " + verb.name + ")";
        if (verb.verbs.empty())
            text += " _arguments" + zshOptions(verb, "            ") + " ;;\n";
        else
            text += " local -a inner=" + zshVerbs(verb)
                + "; _arguments '1:verb:->inner' '*:file:_files'; [[ $state == inner ]] && _describe verb "
                  "inner ;;\n";
    }
    return text + "        esac ;;\n    esac\n}\n_effectengine \"$@\"\n";
}

std::string fishCompletion(const VerbText& tool)
{
    std::string text = R"sh(# fish completion for effectengine
function __effectengine_parameters
    set -l words (commandline -opc)
    set -l effect $words[3]
    for i in (seq (count $words) -1 2)
        if contains -- $words[(math $i - 1)] -e --effect
            set effect $words[$i]
            break
        end
    end
    effectengine describe --names $effect 2>/dev/null | string replace -r '$' '='
end
)sh";
    for (const OptionText& option : tool.options)
        text += fishOption(option, "__fish_use_subcommand");
    for (const VerbText& verb : tool.verbs) {
        text += "complete -c effectengine -n __fish_use_subcommand -f -a " + verb.name + " -d "
            + singleQuoted(verb.help) + "\n";
        const std::string seen = "__fish_seen_subcommand_from " + verb.name;
        for (const OptionText& option : verb.options) {
            if (!option.positional)
                text += fishOption(option, seen);
        }
        if (takesEffects(verb))
            text +=
                "complete -c effectengine -n " + singleQuoted(seen) + " -a '(effectengine list --names)'\n";
        if (!wordChoices(verb).empty())
            text += "complete -c effectengine -n " + singleQuoted(seen) + (verb.verbs.empty() ? " -f" : "")
                + " -a " + singleQuoted(joined(wordChoices(verb), " ")) + "\n";
    }
    return text;
}

} // namespace tool
