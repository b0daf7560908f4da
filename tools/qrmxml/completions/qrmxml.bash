# bash completion for qrmxml                                -*- shell-script -*-

_qrmxml()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command='' word options
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $word in
            write | check | find | set | namespaces | events | url | tree)
                command=$word
                break
                ;;
        esac
    done

    case $previous in
        --as) mapfile -t COMPREPLY < <(compgen -W 'xml text path' -- "$current"); return ;;
        --encoding)
            mapfile -t COMPREPLY < <(compgen -W 'UTF-8 US-ASCII ISO-8859-1 ISO-8859-15 windows-1252 KOI8-R
                Shift_JIS EUC-JP GB18030' -- "$current")
            return
            ;;
        -o | --output | --no-namespace-schema) mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
        --attr | --base | --depth | --name | --ns-uri | --prefix-of | --schema-location | --tag | --text) return ;;
    esac

    if [[ -z $command ]]; then
        mapfile -t COMPREPLY < <(compgen -W 'write check find set namespaces events url tree --help --version' \
            -- "$current")
        return
    fi
    if [[ $current == -* ]]; then
        local read='--help --allow-external --no-progress'
        local save='--encoding --output --in-place --ns'
        case $command in
            write) options="$read $save" ;;
            check) options="$read --dtd --schema --schema-location --no-namespace-schema" ;;
            find) options="$read --tag --name --ns-uri --attr --text --children --all --as" ;;
            set) options="$read $save --text --attr" ;;
            namespaces) options="$read --tag --prefix-of" ;;
            events) options="$read --json" ;;
            url) options='--help --no-progress --base --fetch' ;;
            tree) options="$read --depth" ;;
        esac
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
        return
    fi
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
}
complete -o filenames -F _qrmxml qrmxml
