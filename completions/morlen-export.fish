# fish completion for morlen-export
complete -c morlen-export -l vtu -r -d 'Write a VTU file'
complete -c morlen-export -l csv -x -a '(__fish_complete_directories)' -d 'Write tables into CSV files in a folder'
complete -c morlen-export -l json -r -d 'Write all tables into one JSON file'
complete -c morlen-export -l results -r -d 'Post-process results'
complete -c morlen-export -l text -r -d 'Text results'
complete -c morlen-export -l any-time -d 'Take results that are older than the model'
complete -c morlen-export -s h -l help -d 'Print help'
complete -c morlen-export -l version -d 'Print the version'
