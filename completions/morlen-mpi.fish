# fish completion for morlen-mpi
complete -c morlen-mpi -l threads -x -d 'Threads of each rank for dense matrices'
complete -c morlen-mpi -o p -d 'Write the mesh file for the post-processor'
complete -c morlen-mpi -o i -r -d 'Write the progress of the run'
complete -c morlen-mpi -o e -r -d 'Write the message of an error into this file'
complete -c morlen-mpi -o r0 -d 'Do not renumber the nodes'
