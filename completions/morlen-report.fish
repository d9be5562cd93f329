# fish completion for morlen-report
complete -c morlen-report -s o -l output -r -d 'The report'
complete -c morlen-report -l results -r -d 'Post-process results'
complete -c morlen-report -l text -r -d 'Text results'
complete -c morlen-report -l any-time -d 'Take results that are older than the model'
complete -c morlen-report -s h -l help -d 'Print help'
complete -c morlen-report -l version -d 'Print the version'
