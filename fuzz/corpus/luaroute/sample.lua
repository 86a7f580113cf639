route =
{
  version = 1,

  id = '{67f27d8b-7540-40af-9f8e-4aa4fa88237a}',
  name = 'Депо — Вокзал',
  short_name = '5к',

  type = 'round',

  play_sound = false,
  display_text = true,

  base_sound =
  {
    current = '/sdmmc/voskdev/текущая.wav',
    next = '/sdmmc/voskdev/next.wav',
    last = '',
  },

  base_text =
  {
    current = 'Остановка: ',
    next = 'Следующая: ',
    last = '. Конечная',
  },

  stops =
  {

    direct =
    {
      first = 'Депо',

      {
        name  = 'Центральная',
        full_name  = 'Площадь Центральная',
        is_key_stop = true,
        sound = '/sdmmc/voskdev/центральная.wav',
        other_sounds = { '/sdmmc/voskdev/a.wav', '/sdmmc/voskdev/b.wav' },
        other_text = 'Пересадка на метро',
        zone  = 
        {
          type = 'round',
          center = { lon = 30.5 * 3600000.0, lat = 59.938806 * 3600000.0 },
          radius = 50,
          course = { value = 270, diff = 45 },
        },
      },

      {
        name  = 'Школа',
        sound = '/sdmmc/voskdev/school.wav',
        zone  = 
        {
          type = 'round',
          center = { lon = 37.619977 * 3600000.0, lat = 55.753697 * 3600000.0 },
          radius = 35,
        },
      },

    },

    reverse =
    {
      last = 'Парк',

      {
        name  = 'Рынок',
        sound = '',
        zone  = 
        {
          type = 'round',
          center = { lon = -0.1275 * 3600000.0, lat = 51.507222 * 3600000.0 },
          radius = 120,
        },
      },

    },

  },

  events =
  {
  },
}
