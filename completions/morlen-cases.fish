# fish completion for morlen-cases
complete -c morlen-cases -s o -l output -x -a '(__fish_complete_directories)' -d 'Folder of the results'
complete -c morlen-cases -l write -x -d 'What to write: names or patterns'
complete -c morlen-cases -l formats -x -a 'text post csv json vtu' -d 'Formats of the results'
complete -c morlen-cases -l check -d 'Check the files and list the combinations'
complete -c morlen-cases -s h -l help -d 'Print help'
complete -c morlen-cases -l version -d 'Print the version'
