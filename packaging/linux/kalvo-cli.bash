# bash completion for kalvo-cli: commands, their actions, options and files. Plain bash: works
# without the bash-completion helpers too.
_kalvo_cli_files()
{
    local IFS=$'\n'
    COMPREPLY+=($(compgen -f -- "$cur"))
}

_kalvo_cli()
{
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
    local words=("${COMP_WORDS[@]}") cword=$COMP_CWORD
    COMPREPLY=()
    local commands="identify send clock name script records report kym csv vars limits cal modem update pfile templates specdb archive help"
    local options="--port --simulate --timeout --yes --trace --lang --archive --no-archive --help --version"
    case $prev in
    --port)
        COMPREPLY=($(compgen -W "'COM 1' 'COM 2' 'COM 3' 'COM 4' $(ls /dev/ttyS* /dev/ttyUSB* /dev/ttyACM* 2>/dev/null)" -- "$cur"))
        return ;;
    --trace | --archive | --pdf | --out | --header | --update-dir)
        _kalvo_cli_files
        return ;;
    --timeout | --lang | --slot | --template | --record)
        return ;;
    esac
    local i command=""
    for ((i = 1; i < cword; i++)); do
        case ${words[i]} in
        --port | --timeout | --trace | --lang | --archive) ((i++)) ;;
        -*) ;;
        *) command=${words[i]}; break ;;
        esac
    done
    if [[ -z $command ]]; then
        COMPREPLY=($(compgen -W "$commands $options" -- "$cur"))
        return
    fi
    local actions=""
    case $command in
    records) actions="count list read-all current show --json --template" ;;
    kym) actions="read" ;;
    vars) actions="list read dump store --json" ;;
    limits) actions="get set kuschl ubez pzhv --store" ;;
    cal) actions="backup restore diff --store --json" ;;
    modem) actions="set --tel1 --tel2 --init --store" ;;
    update) actions="file package --lang" ;;
    pfile) actions="build load --slot --out" ;;
    templates) actions="read" ;;
    specdb) actions="list defaults add store-set delete --regulation --class --type --parts --sfc --switch --limit --all --json" ;;
    archive) actions="import list show export verify due interval labels signed find --json --pdf --before --device --regulation --sheet --first --inspector" ;;
    identify) actions="--update-dir" ;;
    report) actions="--record --pdf" ;;
    csv) actions="--header" ;;
    script) actions="--out" ;;
    esac
    COMPREPLY=($(compgen -W "$actions" -- "$cur"))
    _kalvo_cli_files
}
complete -o filenames -F _kalvo_cli kalvo-cli
