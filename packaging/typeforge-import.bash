# Completion of typeforge-import for bash.
_typeforge_import()
{
    local cur prev words cword
    _init_completion || return
    case $prev in
        -o | --output | --password-file)
            _filedir
            return ;;
        --overwrite)
            mapfile -t COMPREPLY < <(compgen -W "all none ask" -- "$cur")
            return ;;
        -b | --base-path | -t | --table | --type | --create | --user)
            return ;;
    esac
    if [[ $cur == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "--base-path --table --output --list --type --create --user --password-file
            --trusted --overwrite --help --version" -- "$cur")
    elif ((cword == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "dtd xml xsd btd odbc" -- "$cur")
    else
        case ${words[1]} in
            dtd) _filedir '@(dtd|DTD)' ;;
            xsd) _filedir '@(xsd|XSD|xml|XML)' ;;
            xml | btd) _filedir '@(xml|XML)' ;;
            odbc) mapfile -t COMPREPLY < <(compgen -W "$(odbcinst -q -s 2>/dev/null | tr -d '[]')" -- "$cur") ;;
        esac
    fi
} && complete -F _typeforge_import typeforge-import
