a = { 1, 2, { x = 'y' } };
b = { [1] = { }, c = { d = { e = { 1 1 'constant table overflow' } } } }
